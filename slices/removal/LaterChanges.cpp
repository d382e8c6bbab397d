#include "slices/removal/LaterChanges.h"

#include "platform/system/SystemCalls.h"

#include <algorithm>

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
/// The coarsest time stamps there are.
constexpr std::int64_t kCoarsest = 2 * kSecond;

} // namespace

LaterChanges::LaterChanges(const SystemCalls &calls, const Moment &confirmed,
                           std::int64_t clockAhead)
    : m_calls(calls), m_confirmed(confirmed), m_clockAhead(clockAhead)
{
}

/// The clock is read after the stamp: had it been set back before the change, it shows now.
bool LaterChanges::include(std::int64_t stamp) const
{
    const std::int64_t setBack = m_calls.now().setting() - m_confirmed.setting();
    std::int64_t most = m_setBack.load(std::memory_order_relaxed);
    while (setBack < most && !m_setBack.compare_exchange_weak(most, setBack))
        ;
    const std::int64_t earliest = m_confirmed.stamp + m_clockAhead + std::min(setBack, most);
    const bool isWholeSecond = stamp % kSecond == 0;
    return isWholeSecond ? stamp + kCoarsest > earliest : stamp >= earliest;
}
