#pragma once

#include "slices/cleaning/CleaningPlan.h"

#include <cstdint>
#include <functional>
#include <stop_token>

/// Something that should have gone but could not be removed.
struct CleaningFailure
{
    QByteArray path; ///< raw, absolute
    int error = 0;   ///< errno
};

/// What a cleaning did. Whatever was planned and still exists is kept by the plan, named in one of
/// the two lists, lies below a folder named there or belongs to such an item, as its record in the
/// trash or as its journal; beyond a bound the lists only count.
struct CleaningReport
{
    std::uint64_t removedItems = 0; ///< files, links and folders, those deep inside included
    std::uint64_t failureCount = 0;
    std::uint64_t refusalCount = 0;
    QList<CleaningFailure> failures; ///< the first kMaxReported
    QList<CleaningRefusal> refusals; ///< the plan's, then the first kMaxReported of the cleaning's
    bool wasStopped = false;

    static constexpr int kMaxReported = 10'000;
};

/// Hears how far a cleaning is. Called from the cleaning's threads, by one at a time.
class CleaningObserver
{
public:
    virtual ~CleaningObserver() = default;

    /// Every few hundred items, and at the end.
    virtual void removedSoFar(std::uint64_t items) = 0;
};

/// What is in use at and inside a place, which is the location or lies in it. Asked right before
/// the place's turn, on the thread that cleans.
using InUseCheck = std::function<FileUrls(const CleaningLocation &, const FileUrl &place)>;

/// Removes for good what the plan says and nothing else: never through a link, never on another
/// file system, never anything excluded, and nothing of a folder that could not be listed wholly.
/// Rights are never changed, but for read-only folders inside a place whose plan says so, which are
/// the user's own, and have them back where they stay. A place that is in use when its turn comes
/// stays, and so does what is in use inside it: what a folder holds at, or on the way to, the
/// places of programs has a turn of its own, after all else. Goes on after a failure; looks at the
/// stop token before every item. Runs on the caller's thread, with a second one where the disk
/// gains by it, and writes the log lines of the cleaning. Blocks: not for the main thread.
CleaningReport performCleaning(const SystemCalls &calls, const CleaningPlan &plan,
                               std::stop_token stop, CleaningObserver *observer = nullptr,
                               const InUseCheck &inUse = {});
