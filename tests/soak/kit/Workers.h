#pragma once

#include <QByteArrayList>
#include <cstdint>
#include <functional>

/// The result of one case.
struct CaseResult
{
    std::uint64_t counts = 1; ///< for how many it counts
    QByteArrayList wrong;     ///< findings, for people
};

/// The results of all cases together.
struct CaseTotals
{
    std::uint64_t done = 0;
    std::uint64_t found = 0;
};

/// Makes cases by their numbers, from 0, in as many processes as there are processors, until
/// `wanted` are counted or `most` were made. A case that takes minutes ends its process and is a
/// finding, like one that crashes. Findings go to stderr, at most some dozens. To be called while
/// this process has no other thread.
CaseTotals makeCases(std::uint64_t wanted, std::uint64_t most,
                     const std::function<CaseResult(std::uint64_t number)> &make);
