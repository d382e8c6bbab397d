#pragma once

#include "platform/system/HostSystemCalls.h"
#include "platform/system/Moment.h"
#include "platform/system/SystemCalls.h"

/// What was made until now was there before; what is made from now on comes later. The clock that
/// stamps changes goes in ticks, and may be two of them behind.
inline Moment momentBetween()
{
    const std::int64_t latest = hostSystemCalls().now().precise;
    while (hostSystemCalls().now().stamp <= latest)
        ;
    return hostSystemCalls().now();
}

/// A moment at which all that was made until now is a minute old.
inline Moment inAMinute()
{
    constexpr std::int64_t kMinute = 60'000'000'000;
    const Moment now = momentBetween();
    return {now.stamp + kMinute, now.precise + kMinute, now.sinceStart + kMinute};
}
