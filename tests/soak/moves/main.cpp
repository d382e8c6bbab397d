// Makes every hostile move before every call of a cleaning: every moment is tried on purpose. The
// short form is slices/cleaning/tst_CleaningRaces.
#include "tests/slices/kit/Interleavings.h"
#include "tests/soak/kit/SideBySide.h"
#include "tests/soak/kit/SoakCommand.h"

#include <QCoreApplication>
#include <cstdio>
#include <random>

namespace {

struct Tally
{
    std::uint64_t tried = 0;
    std::uint64_t lost = 0;
    std::uint64_t explained = 0;

    Tally &operator+=(const Tally &other)
    {
        tried += other.tried;
        lost += other.lost;
        explained += other.explained;
        return *this;
    }
};

struct Calls
{
    Interleavings::CallCounts counts{};

    Calls &operator+=(const Calls &other)
    {
        counts = other.counts; // there is one
        return *this;
    }
};

using Many = std::vector<Interleavings::Interleaving>;

/// All of them as often as the amount asks for, in random order: of less than all it is a sample.
Many chosen(const Interleavings &interleavings, const SoakCommand &command)
{
    std::mt19937 random(command.seed());
    Many all = interleavings.all();
    Many chosen;
    while (chosen.size() < command.amount()) {
        if (command.isSet("pairs")) {
            chosen.push_back(interleavings.anyPair(random));
            continue;
        }
        std::shuffle(all.begin(), all.end(), random);
        const auto missing = std::min<std::uint64_t>(command.amount() - chosen.size(), all.size());
        chosen.insert(chosen.end(), all.begin(), all.begin() + std::ptrdiff_t(missing));
    }
    return chosen;
}

Tally tryShare(const SoakCommand &command, const Interleavings &interleavings, int number)
{
    const Many all = chosen(interleavings, command);
    const auto share = [&](int part) {
        return all.begin() + std::ptrdiff_t(all.size()) * part / command.processes();
    };
    Tally tally;
    interleavings.run(share(number), share(number + 1), [&](const auto &one, const auto &outcome) {
        ++tally.tried;
        if (outcome.lost.isEmpty())
            return;
        ++(outcome.isExplained ? tally.explained : tally.lost);
        if (!outcome.isExplained)
            std::fprintf(stderr, "%s: lost %s\n", interleavings.words(one).constData(),
                         outcome.lost.join(", ").constData());
    });
    return tally;
}

/// In a process of its own, because it leaves a thread behind. The same for all, so that they share
/// one list.
std::optional<Calls> countCalls(const SoakDisk &disk)
{
    return sideBySide<Calls>(1,
                             [&](int) { return Calls{Interleavings::countCalls(disk.folder())}; });
}

int run(const SoakCommand &command, const SoakDisk &disk)
{
    const auto calls = countCalls(disk);
    if (!calls)
        return EXIT_FAILURE; // the process died, and has said why
    // After a mount it is not seen what a second move loses below it.
    const bool mayMount = disk.isAdministrator() && !command.isSet("pairs");
    const Mounting mounting = mayMount ? Mounting::Allowed : Mounting::NotAllowed;
    const auto total = sideBySide<Tally>(command.processes(), [&](int number) {
        const QByteArray folder = disk.folder() + '/' + QByteArray::number(number);
        makeFolder(folder);
        return tryShare(command, Interleavings(folder, mounting, calls->counts), number);
    });
    if (!total)
        return EXIT_FAILURE;
    const std::size_t all = Interleavings({}, mounting, calls->counts).all().size();
    printRow(
        command.isSet("pairs") ? "two hostile moves before two calls"
                               : "hostile moves before every call",
        disk.where(),
        counted(total->tried) + " cleanings" +
            (command.isSet("pairs") ? QByteArray() : " of " + counted(all) + " different ones"),
        counted(total->lost) + " with a loss, " + counted(total->explained) +
            " where nothing was excluded, as docs/safety.md says");
    return total->lost == 0 && total->tried == command.amount() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const SoakCommand command(
        "Makes hostile moves before every call of a cleaning.",
        "How many cleanings; all moves before all calls are some 50,000.",
        {{QStringLiteral("pairs"), QStringLiteral("Two random moves before two random calls.")}});
    const SoakDisk disk(command.disk(), command.user());
    return run(command, disk);
}
