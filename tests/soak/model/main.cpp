// Cleans random trees and compares what is left with set arithmetic. The short form is
// slices/cleaning/tst_CleaningModel.
#include "tests/slices/kit/ModelCase.h"
#include "tests/soak/kit/SoakDisk.h"
#include "tests/soak/kit/Workers.h"
#include "tests/support/run/SharedMemory.h"

#include <QCoreApplication>
#include <atomic>

namespace {

/// What the processes count together.
struct Tally
{
    std::atomic<std::uint64_t> entries = 0;
    std::atomic<std::uint64_t> confined = 0;
    std::atomic<std::uint64_t> busy = 0;
    std::atomic<std::uint64_t> failedCalls = 0;
    std::atomic<std::uint64_t> lost = 0;
    std::atomic<std::uint64_t> left = 0;
    std::atomic<std::uint64_t> wrong = 0;
};

/// Half of the cases have calls that fail; half are dealt with as on a disk, with two threads.
ModelCase::Conditions conditionsOf(quint32 seed)
{
    constexpr int kFailuresPerThousand = 40;
    return {seed / 2 % 2 == 0 ? 0 : kFailuresPerThousand, seed / 4 % 2 == 0};
}

ModelCase::Outcome outcomeOf(const QByteArray &folder, quint32 seed, Tally &tally)
{
    const std::size_t descriptors = openDescriptors();
    ModelCase tried(folder, seed, conditionsOf(seed));
    ModelCase::Outcome outcome = tried.run();
    if (openDescriptors() != descriptors)
        outcome.wrong.append("descriptors were left open");
    tally.entries += outcome.removed + outcome.kept;
    tally.confined += tried.isConfined() ? 1 : 0;
    tally.busy += tried.isBusy() ? 1 : 0;
    tally.failedCalls += outcome.failedCalls;
    tally.lost += std::uint64_t(outcome.lost.size());
    tally.left += std::uint64_t(outcome.leftBehind.size());
    tally.wrong += std::uint64_t(outcome.wrong.size());
    return outcome;
}

CaseResult tryCase(const QByteArray &folder, quint32 seed, Tally &tally)
{
    const ModelCase::Outcome outcome = outcomeOf(folder, seed, tally);
    CaseResult result;
    if (!outcome.isRight())
        result.wrong.append("--amount 1 --seed " + QByteArray::number(seed) + ": " +
                            outcome.words());
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    SoakPart part({"Compares random cleanings with set arithmetic.", "How many cleanings."},
                  SoakDisk::options() + Workers::options());
    const Workers workers(part);
    const SoakDisk disk(part);
    const SharedMemory<Tally> tally;
    const CaseTotals totals =
        workers.makeCases(part.amount(), part.amount(), [&](std::uint64_t number) {
            return tryCase(disk.folder(), part.seed() + quint32(number), *tally);
        });
    part.print({"random cleanings against the model", disk.where(),
                grouped(totals.done) + " cases of " + grouped(tally->entries) + " entries, " +
                    grouped(tally->confined) + " confined, " + grouped(tally->busy) +
                    " with later changes, " + grouped(tally->failedCalls) + " failed calls",
                grouped(tally->lost) + " lost, " + grouped(tally->left) + " left behind, " +
                    grouped(tally->wrong) + " wrong reports" + totals.deaths(),
                totals.found, totals.done, part.amount()});
    return part.exitCode();
}
