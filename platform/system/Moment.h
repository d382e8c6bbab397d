#pragma once

#include <cstdint>
#include <limits>

/// What the kernel's clocks show at one moment, in nanoseconds.
struct Moment
{
    /// Since 1970. Every change of a file that happens later gets at least this time stamp, as long
    /// as no one sets the clock back: the kernel stamps changes in ticks, and this is the last
    /// tick.
    std::int64_t stamp = 0;
    /// Since 1970, to the point: no change that happened earlier has a later time stamp.
    std::int64_t precise = 0;
    /// Since the machine was started; no one can set it.
    std::int64_t sinceStart = 0;

    /// How the clock is set. It gets smaller when the clock is set back.
    std::int64_t setting() const { return precise - sinceStart; }

    /// A moment that never comes: all that exists was there before.
    static constexpr Moment never()
    {
        constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max() / 4;
        return {kLatest, kLatest, kLatest};
    }
};
