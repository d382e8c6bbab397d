#pragma once

#include "platform/system/FileStatus.h"

#include <map>
#include <mutex>

/// Remembers of which files the cleaning itself has removed a name while another was left. Such a
/// removal sets the time of the file's last change, which would otherwise look like a change by
/// somebody else. Shared by all locations and threads of a cleaning.
class LinkedFiles final
{
public:
    /// Held from the look at a file until its removal is noted, so that no two threads deal with
    /// two names of one file at a time.
    std::unique_lock<std::mutex> lock() { return std::unique_lock(m_mutex); }

    /// A name was removed between these two times, in nanoseconds. Only while the lock is held.
    void note(const InodeId &file, std::int64_t before, std::int64_t after);
    /// Whether the file's last change was the latest removal of one of its names. Only while the
    /// lock is held.
    bool explain(const FileStatus &status) const;

private:
    using Key = std::pair<std::uint64_t, std::uint64_t>;
    struct Span
    {
        std::int64_t before;
        std::int64_t after;
    };

    std::mutex m_mutex; ///< guards all below
    std::map<Key, Span> m_removals;
};
