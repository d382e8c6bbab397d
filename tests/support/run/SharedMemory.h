#pragma once

#include "tests/support/run/Must.h"

#include <new>
#include <sys/mman.h>

/// A value that this process shares with those that it forks. They use atomic members: nothing else
/// keeps their changes apart.
template <typename Value> class SharedMemory final
{
public:
    SharedMemory() : m_value(new (mapped()) Value()) {}
    ~SharedMemory()
    {
        m_value->~Value();
        ::munmap(m_value, sizeof(Value));
    }
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;

    Value *operator->() const { return m_value; }
    Value &operator*() const { return *m_value; }

private:
    static void *mapped()
    {
        void *const memory = ::mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE,
                                    MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        must(memory != MAP_FAILED, "memory to share");
        return memory;
    }

    Value *m_value;
};
