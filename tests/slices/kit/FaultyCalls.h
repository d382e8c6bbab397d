#pragma once

#include "tests/support/calls/HookedCalls.h"

#include <atomic>
#include <cerrno>
#include <iterator>

/// Makes a share of the calls fail, and says that the scratch folder lies on a disk or not.
class FaultyCalls final : public HookedCalls
{
public:
    FaultyCalls(quint32 seed, int failuresPerThousand, bool isForOneThread)
        : m_state(seed | 1), m_failures(failuresPerThousand), m_isForOneThread(isForOneThread)
    {
    }

    /// How many calls have failed because of this.
    std::uint64_t failed() const { return m_failed; }

    bool isForOneThread(int) const override { return m_isForOneThread; }
    std::optional<int> before(const char *, int, const char *) const override
    {
        // A scrambled counter: it gives the same sequence for the same order of calls, from any
        // thread.
        quint32 value = m_state.fetch_add(0x9e3779b9u);
        value = (value ^ (value >> 16)) * 0x85ebca6bu;
        value ^= value >> 13;
        if (int(value % 1000) >= m_failures)
            return {};
        ++m_failed;
        constexpr int kErrors[] = {EIO, EACCES, EPERM, EBUSY, ENOMEM, EMFILE, ENOTEMPTY, EROFS};
        return kErrors[(value >> 10) % std::size(kErrors)];
    }

private:
    mutable std::atomic<quint32> m_state;
    mutable std::atomic<std::uint64_t> m_failed = 0;
    int m_failures;
    bool m_isForOneThread;
};
