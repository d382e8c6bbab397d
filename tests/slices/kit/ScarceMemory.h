#pragma once

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <new>

/// Lets this process run out of memory on purpose. For one source of a test program: replaces its
/// `operator new`, and where no sanitizer has done so its `malloc`, with which the toolkit makes
/// its arrays and texts.

class ScarceMemory final
{
public:
    enum class Lack {
        Once, ///< one request fails
        Lasting,
    };

    /// From the request of this number on, from 0, of any thread, until the end. With a number
    /// below 0 it only counts.
    static void start(int request, Lack lack)
    {
        s_lasts = lack == Lack::Lasting;
        s_requests = 0;
        s_first = request;
    }
    /// Returns the requests since the start.
    static int end()
    {
        s_first = kNever;
        return s_requests;
    }

    static bool isRefused()
    {
        const int first = s_first;
        if (first == kNever)
            return false;
        const int request = s_requests++;
        return first >= 0 && (s_lasts ? request >= first : request == first);
    }

private:
    static constexpr int kNever = std::numeric_limits<int>::min();
    static inline std::atomic<int> s_first = kNever;
    static inline std::atomic<int> s_requests = 0;
    static inline std::atomic<bool> s_lasts = false;
};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kIsAllMemoryScarce = false;
#else
inline constexpr bool kIsAllMemoryScarce = true;

extern "C" void *__libc_malloc(std::size_t size);
extern "C" void *__libc_realloc(void *memory, std::size_t size);

extern "C" void *malloc(std::size_t size)
{
    if (!ScarceMemory::isRefused())
        return __libc_malloc(size);
    errno = ENOMEM;
    return nullptr;
}

extern "C" void *realloc(void *memory, std::size_t size)
{
    if (!ScarceMemory::isRefused())
        return __libc_realloc(memory, size);
    errno = ENOMEM;
    return nullptr;
}
#endif

void *operator new(std::size_t size)
{
    // Where malloc is ours, it counts.
    if (!kIsAllMemoryScarce && ScarceMemory::isRefused())
        throw std::bad_alloc();
    if (void *const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}
