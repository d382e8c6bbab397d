#pragma once

#include "platform/files/FileAccess.h"
#include "platform/system/SystemResult.h"
#include "slices/home/HomeLayout.h"

#include <QByteArrayList>
#include <chrono>
#include <optional>

class SystemCalls;

/// Tells what of the caches of a freedesktop home programs are using at this moment, whatever the
/// programs are. A program keeps its cache in a folder that lies directly in a location of the
/// slice Cache, so the entry around a file that is in use stays as a whole. Where not all processes
/// can be seen (see SystemCalls::seesAllProcesses()) it finds what it can.
///
/// For one cleaning: the locations come one after the other, and a look that is young enough serves
/// the next one too. One thread, not the main one.
class CacheInUse final
{
public:
    using Age = std::chrono::milliseconds;
    static constexpr Age kOldest{1000};

    /// The calls must outlive it.
    CacheInUse(const SystemCalls &calls, HomeLayout layout, Age oldest = kOldest);

    /// The entries directly in the location that are in use, and are there. Nothing for a location
    /// of another slice. The location itself when the look fails although it should not: then all
    /// of it may be in use.
    FileUrls entriesInUse(const AnchoredPath &path, const FileUrl &location);

private:
    void look(const FileDescriptor &home);

    const SystemCalls &m_calls;
    const HomeLayout m_layout;
    const Age m_oldest;
    std::optional<std::chrono::steady_clock::time_point> m_lookedAt;
    SystemResult<QByteArrayList> m_inUse; ///< relative to the home
};
