#include "platform/system/HostSystemCalls.h"
#include "tests/app/settings/SettingsUnderway.h"
#include "tests/slices/kit/KillCase.h"
#include "tests/soak/kills/AsideDeleter.h"
#include "tests/soak/kit/Workers.h"
#include "tests/support/run/ScratchEnvironment.h"

#include <QCoreApplication>
#include <limits>
#include <random>

/// The soak of kills: a process is killed while it cleans or saves settings, before any of its
/// calls or at any moment.

namespace {

using std::chrono::microseconds;

constexpr int kNever = -1;
/// A case whose work was done before the kill does not count, and on a busy machine these are many.
constexpr std::uint64_t kMostCasesPerKill = 50;

/// The same in every process that makes this case of this row.
std::mt19937_64 randomOf(const Workers &workers, std::uint64_t row, std::uint64_t number)
{
    std::seed_seq seeds{std::uint64_t(workers.part().seed()), row, number};
    return std::mt19937_64(seeds);
}

CaseResult resultOf(const KillOutcome &outcome)
{
    CaseResult result{outcome.end == WorkEnd::Killed ? 1U : 0U, {}};
    if (outcome.end == WorkEnd::Failed)
        result.wrong += "the process neither ended nor was killed";
    if (!outcome.wrong.isEmpty())
        result.wrong += outcome.wrong;
    return result;
}

/// How many calls a cleaning of this world makes, about.
int callsOf(const KillWorld &world)
{
    int calls = 0;
    while (killAtCall(world, 1, calls).end == WorkEnd::Killed)
        ++calls;
    return calls;
}

/// How long a process takes to clean in this world, about: the least of some.
microseconds durationOf(const KillWorld &world)
{
    constexpr int kTries = 20;
    microseconds least = microseconds::max();
    for (int i = 0; i < kTries; ++i) {
        const CleaningGround ground;
        const KillHome home(ground.path(), world, 1);
        const auto start = std::chrono::steady_clock::now();
        (void)runAndKill([&] { home.cleanUntilKilled(kNever); });
        least = std::min(least, std::chrono::duration_cast<microseconds>(
                                    std::chrono::steady_clock::now() - start));
    }
    return least;
}

void printRow(const Workers &workers, const QByteArray &what, const QByteArray &where,
              std::uint64_t wanted, const std::function<CaseResult(std::uint64_t)> &make)
{
    const CaseTotals totals = workers.makeCases(wanted, kMostCasesPerKill * wanted, make);
    workers.part().print({what, where, grouped(totals.done) + " kills",
                          totals.found == 0 ? QByteArray("0 lost, 0 left aside, 0 not completed")
                                            : grouped(totals.found) + " FOUND",
                          totals.found, totals.done, wanted});
}

void soakCleaning(const Workers &workers, const KillWorld &world, std::uint64_t row,
                  std::uint64_t wanted)
{
    const QByteArray where = QByteArray("cleaning, tmpfs, ") + world.name;
    const int calls = callsOf(world);
    printRow(workers, "kills before a call", where, wanted, [&](std::uint64_t number) {
        auto random = randomOf(workers, row, number);
        return resultOf(killAtCall(world, quint32(random()), int(random() % unsigned(calls))));
    });
    const microseconds duration = durationOf(world);
    printRow(workers, "kills at random moments", where, wanted, [&](std::uint64_t number) {
        auto random = randomOf(workers, row + 1, number);
        const auto after = microseconds(random() % std::uint64_t(duration.count()));
        return resultOf(killAtTime(world, quint32(random()), after));
    });
}

/// Three saves in a new folder, killed as told.
CaseResult killSaves(const std::function<WorkEnd(const SettingsUnderway &)> &kill)
{
    const CleaningGround ground;
    const SettingsUnderway settings(QString::fromUtf8(ground.path()));
    const WorkEnd end = kill(settings);
    return resultOf({end, settings.wrong(hostSystemCalls())});
}

void soakSettings(const Workers &workers, std::uint64_t row, std::uint64_t wanted)
{
    constexpr int kSaves = 3;
    constexpr int kCalls = 60;
    constexpr int kEndless = std::numeric_limits<int>::max() - 1;
    constexpr std::uint64_t kLongest = 3000; // microseconds: dozens of saves
    printRow(workers, "kills before a call", "saving settings, tmpfs", wanted,
             [&](std::uint64_t number) {
                 auto random = randomOf(workers, row, number);
                 return killSaves([&](const SettingsUnderway &settings) {
                     const int call = int(random() % kCalls);
                     return runAndKill([&] { settings.save(KillingCalls(call), 1, kSaves); });
                 });
             });
    printRow(workers, "kills at random moments", "saving settings, tmpfs", wanted,
             [&](std::uint64_t number) {
                 auto random = randomOf(workers, row + 1, number);
                 return killSaves([&](const SettingsUnderway &settings) {
                     return runAndKill([&] { settings.save(hostSystemCalls(), 1, kEndless); },
                                       microseconds(random() % kLongest));
                 });
             });
}

void soakNaive(const Workers &workers)
{
    const auto make = [&](std::uint64_t number) {
        auto random = randomOf(workers, 0, number);
        const CleaningGround ground;
        const KillHome home(ground.path(), {}, quint32(random()));
        const WorkEnd end =
            runAndKill([&] { cleanByMovingAside(home.home()); }, microseconds(random() % 1000));
        return resultOf({end, home.lost()});
    };
    printRow(workers, "kills of a naive deleter", "tmpfs", workers.part().amount(), make);
}

void soakAll(const Workers &workers)
{
    using Excluded = KillWorld::Excluded;
    constexpr auto kMemory = KillingCalls::Medium::Memory;
    constexpr auto kDisk = KillingCalls::Medium::Disk;
    const std::vector<KillWorld> worlds{
        {"nothing excluded", Excluded::Nothing, kMemory, false},
        {"excluded beside, two threads", Excluded::Beside, kDisk, false},
        {"excluded inside", Excluded::Inside, kMemory, false},
        {"excluded inside, confined, two threads", Excluded::Inside, kDisk, true},
    };
    const std::uint64_t rows = 2 * worlds.size() + 2;
    const std::uint64_t each = (workers.part().amount() + rows - 1) / rows;
    std::uint64_t row = 0;
    for (const KillWorld &world : worlds) {
        soakCleaning(workers, world, row, each);
        row += 2;
    }
    soakSettings(workers, row, each);
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchEnvironment environment;
    const QCoreApplication application(argc, argv);
    SoakPart part(
        {"Kills processes that clean, or save settings.", "How many kills in all.", "20000"},
        Workers::options() +
            QList{soakOption(
                "naive",
                "Kills a deleter that moves what is kept out of the way for the time being.")});
    const Workers workers(part);
    if (part.isSet("naive"))
        soakNaive(workers);
    else
        soakAll(workers);
    return part.exitCode();
}
