// Makes every hostile move before every call of a cleaning: every moment is tried on purpose. The
// short form is slices/cleaning/tst_CleaningRaces.
#include "tests/slices/kit/Interleavings.h"
#include "tests/soak/kit/SoakDisk.h"
#include "tests/soak/kit/Workers.h"
#include "tests/support/run/SharedMemory.h"

#include <QCoreApplication>
#include <algorithm>
#include <atomic>
#include <optional>
#include <random>
#include <unistd.h>

namespace {

using Many = std::vector<Interleavings::Interleaving>;

/// How many of them are one case: those that wait for the same tick of the clock.
constexpr std::uint64_t kAtOnce = 64;

/// All of them as often as the amount asks for, in random order: of less than all it is a sample.
Many chosen(const Interleavings &interleavings, const SoakPart &part)
{
    std::mt19937 random(part.seed());
    Many all = interleavings.all();
    Many chosen;
    while (chosen.size() < part.amount()) {
        if (part.isSet("pairs")) {
            chosen.push_back(interleavings.anyPair(random));
            continue;
        }
        std::shuffle(all.begin(), all.end(), random);
        const auto missing = std::min<std::uint64_t>(part.amount() - chosen.size(), all.size());
        chosen.insert(chosen.end(), all.begin(), all.begin() + std::ptrdiff_t(missing));
    }
    return chosen;
}

/// The cleanings that are tried: some at a time, by each process in a folder of its own.
class Trial final
{
public:
    Trial(const SoakPart &part, const SoakDisk &disk, Mounting mounting,
          const Interleavings::CallCounts &counts)
        : m_disk(disk),
          m_mounting(mounting),
          m_counts(counts),
          m_chosen(chosen(Interleavings({}, mounting, counts), part))
    {
    }

    std::uint64_t cases() const { return (m_chosen.size() + kAtOnce - 1) / kAtOnce; }
    CaseResult make(std::uint64_t number) const
    {
        const auto first = m_chosen.begin() + std::ptrdiff_t(number * kAtOnce);
        const auto last = first + std::min(std::ptrdiff_t(kAtOnce), m_chosen.end() - first);
        const Interleavings &interleavings = ofThisProcess();
        CaseResult result{0, {}};
        interleavings.run(first, last, [&](const auto &one, const auto &outcome) {
            ++result.counts;
            if (!outcome.lost.isEmpty())
                result.wrong.append(interleavings.words(one) + ": lost " + outcome.lost.join(", "));
        });
        return result;
    }

private:
    const Interleavings &ofThisProcess() const
    {
        if (!m_interleavings) {
            const QByteArray folder = m_disk.folder() + '/' + QByteArray::number(::getpid());
            makeFolder(folder);
            m_interleavings.emplace(folder, m_mounting, m_counts);
        }
        return *m_interleavings;
    }

    const SoakDisk &m_disk;
    const Mounting m_mounting;
    const Interleavings::CallCounts m_counts;
    const Many m_chosen;
    mutable std::optional<Interleavings> m_interleavings; ///< made after the fork
};

/// In a process of its own, because it leaves a thread behind. The same for all, so that they share
/// one list. Nothing if the process died.
std::optional<Interleavings::CallCounts> countCalls(const SoakDisk &disk)
{
    const SharedMemory<Interleavings::CallCounts> counts;
    const auto dead =
        workSideBySide(1, [&](int) { *counts = Interleavings::countCalls(disk.folder()); });
    return dead.empty() ? std::optional(*counts) : std::nullopt;
}

int run(const Workers &workers, const SoakDisk &disk)
{
    SoakPart &part = workers.part();
    const auto counts = countCalls(disk);
    if (!counts)
        return EXIT_FAILURE; // the process has said why
    // After a mount it is not seen what a second move loses below it.
    const bool arePairs = part.isSet("pairs");
    const Mounting mounting =
        disk.isAdministrator() && !arePairs ? Mounting::Allowed : Mounting::NotAllowed;
    const Trial trial(part, disk, mounting, *counts);
    const CaseTotals totals = workers.makeCases(
        part.amount(), trial.cases(), [&](std::uint64_t number) { return trial.make(number); });
    const std::size_t all = Interleavings({}, mounting, *counts).all().size();
    part.print({arePairs ? "two hostile moves before two calls" : "hostile moves before every call",
                disk.where(),
                grouped(totals.done) + " cleanings" +
                    (arePairs ? QByteArray() : " of " + grouped(all) + " different ones"),
                grouped(totals.found - totals.died) + " with a loss" + totals.deaths(),
                totals.found, totals.done, part.amount()});
    return part.exitCode();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    SoakPart part({"Makes hostile moves before every call of a cleaning.",
                   "How many cleanings; all moves before all calls are some 50,000."},
                  SoakDisk::options() + Workers::options() +
                      QList{soakOption("pairs", "Two random moves before two random calls.")});
    const Workers workers(part);
    const SoakDisk disk(part);
    return run(workers, disk);
}
