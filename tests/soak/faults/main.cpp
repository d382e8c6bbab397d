#include "tests/app/settings/SettingsFaultCase.h"
#include "tests/slices/kit/FaultCase.h"
#include "tests/soak/kit/Workers.h"
#include "tests/support/calls/PossibleErrors.h"
#include "tests/support/run/ScratchEnvironment.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <cstdio>

/// The soak of faults: every call of a cleaning, and of a save of the settings, fails with every
/// error that it can give, singly and in pairs.

namespace {

/// What is common to the worlds.
struct Outcome
{
    QByteArray wrong;
    std::vector<const char *> calls;
    std::size_t faults = 0;
};
using World = std::function<Outcome(const std::vector<Fault> &)>;

/// A fault, and which calls are made when it happens.
struct First
{
    Fault fault;
    std::vector<const char *> calls;
    std::uint64_t pairsBefore = 0; ///< pairs of the faults before it
};

/// All errors of the calls from `from` on.
std::vector<Fault> faultsOf(const std::vector<const char *> &calls, std::size_t from)
{
    std::vector<Fault> faults;
    for (std::size_t call = from; call < calls.size(); ++call) {
        for (std::size_t which = 0; which < possibleErrors(calls[call]).size(); ++which)
            faults.push_back({call, which});
    }
    return faults;
}

QByteArrayList found(const Outcome &outcome)
{
    return outcome.wrong.isEmpty() ? QByteArrayList() : QByteArrayList{outcome.wrong};
}

QByteArray words(std::uint64_t findings)
{
    return findings == 0 ? QByteArray("0 lost, 0 silent, 0 hung, 0 descriptors left")
                         : grouped(findings) + " FOUND";
}

void printRow(const Workers &workers, const char *what, const QByteArray &where,
              const CaseTotals &totals, const char *unit, std::uint64_t wanted)
{
    workers.part().print({what, where, grouped(totals.done) + ' ' + unit, words(totals.found),
                          totals.found, totals.done, wanted});
}

void makeSingles(const Workers &workers, const QByteArray &where, const World &world)
{
    const std::vector<Fault> faults = faultsOf(world({}).calls, 0);
    const auto make = [&](std::uint64_t number) -> CaseResult {
        return {1, found(world({faults[number]}))};
    };
    const CaseTotals totals = workers.makeCases(faults.size(), faults.size(), make);
    printRow(workers, "every call fails with every error", where, totals, "faults", faults.size());
}

/// With the errors after which calls are made again, and others.
void makeLasting(const Workers &workers, const QByteArray &where, const World &world)
{
    constexpr std::array kErrors{EAGAIN, EINTR, EIO, ENOMEM, EMFILE};
    const std::uint64_t most = world({}).calls.size() * kErrors.size();
    const auto make = [&](std::uint64_t number) -> CaseResult {
        const Fault fault{number / kErrors.size(), 0, Fault::Lasts::ForGood,
                          kErrors[number % kErrors.size()]};
        return {1, found(world({fault}))};
    };
    const CaseTotals totals = workers.makeCases(most, most, make);
    printRow(workers, "a call fails for good", where, totals, "faults", most);
}

std::vector<First> firstsOf(const World &world)
{
    std::vector<First> firsts;
    std::uint64_t pairs = 0;
    for (const Fault &fault : faultsOf(world({}).calls, 0)) {
        firsts.push_back({fault, world({fault}).calls, pairs});
        pairs += faultsOf(firsts.back().calls, fault.call + 1).size();
    }
    return firsts;
}

/// All pairs, or as many as wanted, spread evenly over all. A second call that two threads make now
/// and then only is not counted.
void makePairs(const Workers &workers, const QByteArray &where, const World &world)
{
    const std::vector<First> firsts = firstsOf(world);
    const First &last = firsts.back();
    const std::uint64_t all = last.pairsBefore + faultsOf(last.calls, last.fault.call + 1).size();
    const std::uint64_t wanted = std::min(workers.part().amount(), all);
    std::fprintf(stderr, "%s: %s of %s pairs\n", where.constData(), grouped(wanted).constData(),
                 grouped(all).constData());
    const auto isTaken = [&](std::uint64_t pair) {
        const std::uint64_t place = (pair + workers.part().seed()) % all;
        return (place + 1) * wanted / all > place * wanted / all;
    };
    const auto make = [&](std::uint64_t number) {
        const First &first = firsts[number];
        CaseResult result{0, {}};
        std::uint64_t pair = first.pairsBefore;
        for (const Fault &second : faultsOf(first.calls, first.fault.call + 1)) {
            if (!isTaken(pair++))
                continue;
            const Outcome outcome = world({first.fault, second});
            result.counts += outcome.faults > 1 ? 1 : 0;
            result.wrong += found(outcome);
        }
        return result;
    };
    const CaseTotals totals = workers.makeCases(all, firsts.size(), make);
    printRow(workers, "pairs of failing calls", where, totals, "pairs", wanted - wanted / 10);
}

World cleaning(const FaultWorld &world)
{
    return [world](const std::vector<Fault> &faults) -> Outcome {
        const FaultOutcome outcome = cleanWithFaults(world, faults);
        return {outcome.wrong, outcome.calls, outcome.faults};
    };
}

void soakCleaning(const Workers &workers)
{
    using Tree = FaultWorld::Tree;
    constexpr auto kMemory = FailingCalls::Medium::Memory;
    constexpr auto kDisk = FailingCalls::Medium::Disk;
    for (const FaultWorld &world :
         {FaultWorld{"", Tree::Large, kMemory, true, false},
          FaultWorld{", two threads", Tree::Large, kDisk, true, false},
          FaultWorld{", confined", Tree::Large, kMemory, true, true},
          FaultWorld{", nothing excluded", Tree::Large, kMemory, false, false}}) {
        const QByteArray where = QByteArray("cleaning, tmpfs") + world.name;
        makeSingles(workers, where, cleaning(world));
        makeLasting(workers, where, cleaning(world));
        FaultWorld small = world;
        small.tree = Tree::Small;
        makePairs(workers, where, cleaning(small));
    }
}

void soakSettings(const Workers &workers)
{
    const CleaningGround ground;
    const QString folder = QString::fromUtf8(ground.path());
    const World world = [folder](const std::vector<Fault> &faults) -> Outcome {
        const SettingsFaultOutcome outcome = saveWithFaults(folder, faults);
        return {outcome.wrong, outcome.calls, outcome.faults};
    };
    makeSingles(workers, "saving settings, tmpfs", world);
    makeLasting(workers, "saving settings, tmpfs", world);
    makePairs(workers, "saving settings, tmpfs", world);
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchEnvironment environment;
    const QCoreApplication application(argc, argv);
    SoakPart part({"Lets the calls of a cleaning and of a save of the settings fail.",
                   "At most how many pairs of failing calls in each world; all are tried if there "
                   "are fewer.",
                   "1000000"},
                  Workers::options());
    const Workers workers(part);
    soakCleaning(workers);
    soakSettings(workers);
    return part.exitCode();
}
