// Cleans random trees and compares what is left with set arithmetic. The short form is
// slices/cleaning/tst_CleaningModel.
#include "tests/slices/kit/ModelCase.h"
#include "tests/soak/kit/SideBySide.h"
#include "tests/soak/kit/SoakCommand.h"

#include <QCoreApplication>
#include <cstdio>

namespace {

struct Tally
{
    std::uint64_t cases = 0;
    std::uint64_t entries = 0;
    std::uint64_t confined = 0;
    std::uint64_t busy = 0;
    std::uint64_t failedCalls = 0;
    std::uint64_t lost = 0;
    std::uint64_t left = 0;
    std::uint64_t wrong = 0;

    Tally &operator+=(const Tally &other)
    {
        cases += other.cases;
        entries += other.entries;
        confined += other.confined;
        busy += other.busy;
        failedCalls += other.failedCalls;
        lost += other.lost;
        left += other.left;
        wrong += other.wrong;
        return *this;
    }
};

/// Half of the cases have calls that fail; half are dealt with as on a disk, with two threads.
ModelCase::Conditions conditionsOf(quint32 seed)
{
    constexpr int kFailuresPerThousand = 40;
    return {seed / 2 % 2 == 0 ? 0 : kFailuresPerThousand, seed / 4 % 2 == 0};
}

void tell(quint32 seed, const ModelCase::Outcome &outcome)
{
    std::fprintf(stderr, "--amount 1 --processes 1 --seed %u: %s\n", seed,
                 outcome.words().constData());
}

void tryCase(const QByteArray &folder, quint32 seed, Tally &tally)
{
    ModelCase tried(folder, seed, conditionsOf(seed));
    const ModelCase::Outcome outcome = tried.run();
    ++tally.cases;
    tally.entries += outcome.removed + outcome.kept;
    tally.confined += tried.isConfined() ? 1 : 0;
    tally.busy += tried.isBusy() ? 1 : 0;
    tally.failedCalls += outcome.failedCalls;
    tally.lost += std::uint64_t(outcome.lost.size());
    tally.left += std::uint64_t(outcome.leftBehind.size());
    tally.wrong += std::uint64_t(outcome.wrong.size());
    if (!outcome.isRight())
        tell(seed, outcome);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const SoakCommand command("Compares random cleanings with set arithmetic.",
                              "How many cleanings.");
    const SoakDisk disk(command.disk(), command.user());
    const auto total = sideBySide<Tally>(command.processes(), [&](int number) {
        Tally tally;
        const std::size_t descriptors = openDescriptors();
        for (std::uint64_t i = std::uint64_t(number); i < command.amount();
             i += std::uint64_t(command.processes()))
            tryCase(disk.folder(), command.seed() + quint32(i), tally);
        // The first case opens what doOutside() needs, and no descriptor.
        if (openDescriptors() != descriptors) {
            std::fputs("descriptors were left open\n", stderr);
            ++tally.wrong;
        }
        return tally;
    });
    if (!total)
        return EXIT_FAILURE; // a process died, and has said why
    printRow("random cleanings against the model", disk.where(),
             counted(total->cases) + " cases of " + counted(total->entries) + " entries, " +
                 counted(total->confined) + " confined, " + counted(total->busy) +
                 " with later changes, " + counted(total->failedCalls) + " failed calls",
             counted(total->lost) + " lost, " + counted(total->left) + " left behind, " +
                 counted(total->wrong) + " wrong reports");
    return total->lost + total->left + total->wrong == 0 && total->cases == command.amount()
               ? EXIT_SUCCESS
               : EXIT_FAILURE;
}
