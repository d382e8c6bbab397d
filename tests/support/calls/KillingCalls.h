#pragma once

#include "tests/support/calls/HookedCalls.h"

#include <atomic>
#include <csignal>
#include <unistd.h>

/// The host's calls, before one of which the process is killed. Any thread.
class KillingCalls final : public HookedCalls
{
public:
    enum class Medium { Memory, Disk };

    /// `call` counts from 0.
    explicit KillingCalls(int call, Medium medium = Medium::Memory) : m_call(call), m_medium(medium)
    {
    }

    /// Whatever the medium really is: in memory, one thread makes the same calls every time.
    bool isForOneThread(int) const override { return m_medium == Medium::Memory; }
    std::optional<int> before(const char *, int, const char *) const override
    {
        if (m_count++ == m_call)
            ::kill(::getpid(), SIGKILL);
        return {};
    }

private:
    const int m_call;
    const Medium m_medium;
    mutable std::atomic<int> m_count = 0;
};
