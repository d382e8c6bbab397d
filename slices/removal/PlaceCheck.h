#pragma once

#include <algorithm>
#include <chrono>

/// Says when it is time to look whether the folder that is being emptied is still in its place:
/// after so many removals, or so much time. The look itself goes all the way up; even in the
/// deepest trees it takes only a small part of the time. One for each thread that removes.
class PlaceCheck final
{
public:
    /// To be asked before each removal. Whoever gets true looks, and then calls done().
    bool isDue()
    {
        const auto now = Clock::now();
        if (now < m_earliest || (++m_removals < kMostRemovals && now < m_latest))
            return false;
        m_start = now;
        return true;
    }

    void done()
    {
        const auto now = Clock::now();
        m_removals = 0;
        m_earliest = now + kLeastShare * (now - m_start);
        m_latest = std::max(m_earliest, now + kLongest);
    }

    /// Something could not be removed: perhaps because the folder was moved.
    void hurry() { m_removals = kMostRemovals; }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr int kMostRemovals = 256;
    static constexpr int kLeastShare = 9;
    static constexpr std::chrono::milliseconds kLongest{20};

    int m_removals = 0;
    Clock::time_point m_start;
    Clock::time_point m_earliest = Clock::now();
    Clock::time_point m_latest = Clock::now() + kLongest;
};
