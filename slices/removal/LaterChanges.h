#pragma once

#include "platform/system/FileStatus.h"
#include "platform/system/Moment.h"

#include <atomic>

class SystemCalls;

/// Tells what came into being, was moved in, got another name or was written after the user had
/// confirmed its removal: the time of an item's last change tells it, which only the system sets.
/// One for each location of a cleaning. Any thread.
///
/// In doubt a change is a later one: time stamps are taken in ticks, some file systems store only
/// seconds, and clocks are set back.
class LaterChanges final
{
public:
    /// `clockAhead`: see SystemCalls::clockDifference().
    LaterChanges(const SystemCalls &calls, const Moment &confirmed, std::int64_t clockAhead);

    /// Whether a change with this time stamp, which was read just now, may have come later.
    bool include(std::int64_t stamp) const;
    bool include(const FileStatus &status) const { return include(status.changed); }

private:
    const SystemCalls &m_calls;
    const Moment m_confirmed;
    const std::int64_t m_clockAhead;
    /// How far the clock was set back at most since the confirmation; never positive.
    mutable std::atomic<std::int64_t> m_setBack = 0;
};
