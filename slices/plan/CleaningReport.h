#pragma once

#include "slices/plan/CleaningPlan.h"

#include <cstdint>

/// Something that should have gone but could not be removed.
struct CleaningFailure
{
    QByteArray path; ///< raw, absolute
    int error = 0;   ///< errno
};

/// What a cleaning did. A planned item that still exists has one of these reasons: the plan keeps
/// it; one of the two lists names it or a folder around it; or it belongs to such an item, as its
/// trash info file, its journal or its book of sizes. A folder whose rights the cleaning changed
/// and could not set again is named too. Beyond a bound the lists only count. A refusal of
/// everything because of memory stands for rows that there was no memory for.
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
