#pragma once

#include "slices/cleaning/CleaningPlan.h"

#include <cstdint>

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
