#pragma once

#include "tests/soak/kit/SoakPart.h"

#include <QByteArrayList>
#include <functional>

/// The result of one case.
struct CaseResult
{
    std::uint64_t counts = 1; ///< for how many it counts
    QByteArrayList wrong;     ///< findings, for people, with what repeats them
};

/// The results of all cases together.
struct CaseTotals
{
    std::uint64_t done = 0;
    std::uint64_t found = 0; ///< findings, and processes that did not come to their end
    std::uint64_t died = 0;  ///< those processes

    /// ", 1 process died"; nothing where all came to their end. For a row that counts its findings
    /// by their kinds.
    QByteArray deaths() const;
};

/// Processes that work side by side: as many as there are processors, or as --processes says. What
/// else they count together is a SharedMemory. To be used while this process has no other thread.
class Workers final
{
public:
    static QList<QCommandLineOption> options();
    explicit Workers(SoakPart &part);

    /// For which they work.
    SoakPart &part() const { return m_part; }
    int count() const { return m_count; }

    /// Makes cases by their numbers, from 0, until `wanted` are counted or `most` were made. A case
    /// that takes minutes ends its process and is a finding, like one that crashes; the other
    /// processes go on. Findings go to stderr, at most some dozens.
    CaseTotals makeCases(std::uint64_t wanted, std::uint64_t most,
                         const std::function<CaseResult(std::uint64_t number)> &make) const;

private:
    SoakPart &m_part;
    int m_count;
};

/// Does the work in so many processes, each with a number from 0, and waits for them. Returns the
/// numbers of those that did not come to their end, and says on stderr how they ended. To be called
/// while this process has no other thread.
std::vector<int> workSideBySide(int processes, const std::function<void(int number)> &work);
