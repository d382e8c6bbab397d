#include "tests/support/disk/Moments.h"

#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"

Moment momentBetween()
{
    const std::int64_t latest = hostSystemCalls().now().precise;
    while (hostSystemCalls().now().stamp <= latest)
        ;
    return hostSystemCalls().now();
}

Moment inAMinute()
{
    constexpr std::int64_t kMinute = 60'000'000'000;
    const Moment now = momentBetween();
    return {now.stamp + kMinute, now.precise + kMinute, now.sinceStart + kMinute};
}
