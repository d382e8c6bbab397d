// Another process makes hostile moves as fast as it can, while this one cleans again and again.
// Each attack is tried on a simple deleter first, which has to lose something.
#include "tests/slices/kit/CleaningKit.h"
#include "tests/soak/attack/Duel.h"
#include "tests/soak/kit/SideBySide.h"
#include "tests/soak/kit/SoakCommand.h"
#include "tests/support/disk/Moments.h"

#include <QCoreApplication>
#include <cstdio>

namespace {

using std::chrono::milliseconds;

std::vector<std::unique_ptr<Attack>> allAttacks(const AttackGround &ground)
{
    std::vector<std::unique_ptr<Attack>> attacks = folderAttacks(ground);
    for (auto &attack : fileAttacks(ground))
        attacks.push_back(std::move(attack));
    return attacks;
}

class TrustingCleaner final : public AttackedCleaner
{
public:
    TrustingCleaner(const Attack &attack, const AttackGround &ground)
        : m_ground(ground), m_way(attack.victim())
    {
    }
    void confirm() override { m_confirmed = momentBetween().stamp; }
    std::uint64_t clean() override
    {
        TrustingDeleter deleter(m_way, m_ground.excluded(), m_confirmed);
        deleter.empty(m_ground.location());
        return deleter.removed();
    }

private:
    AttackGround m_ground;
    TrustingDeleter::Way m_way;
    std::int64_t m_confirmed = 0;
};

class Vantor final : public AttackedCleaner
{
public:
    Vantor(const Attack &attack, const AttackGround &ground)
        : m_ground(ground), m_hasExclusion(attack.hasExclusion())
    {
    }
    void confirm() override
    {
        m_home = std::make_unique<GrantedFolder>(m_ground.home());
        m_slice = contentsOf({m_home->folder("Downloads")});
        m_slice.known = lookAtLocations(hostSystemCalls(), *m_home, m_slice.fileURLs);
        m_slice.confirmed = momentBetween();
    }
    std::uint64_t clean() override
    {
        const FileUrls excluded =
            m_hasExclusion ? FileUrls{m_home->folder("Downloads/Keep")} : FileUrls();
        return ::clean(*m_home, {m_slice}, excluding(excluded)).removedItems;
    }

private:
    AttackGround m_ground;
    bool m_hasExclusion;
    std::unique_ptr<GrantedFolder> m_home;
    SliceToClean m_slice;
};

template <typename Cleaner>
Duel::Score scoreOf(Attack &attack, const AttackGround &ground, milliseconds time)
{
    Duel duel(attack);
    Cleaner cleaner(attack, ground);
    return duel.run(time, cleaner);
}

/// One attack on both.
class Trial final
{
public:
    Trial(const SoakCommand &command, const SoakDisk &disk, std::size_t attack)
        : m_command(command), m_disk(disk), m_attack(attack)
    {
    }

    /// Whether the simple deleter has lost something, and Vantor nothing.
    bool run() const
    {
        const auto amount = static_cast<std::int64_t>(m_command.amount());
        const std::optional<Result> naive = resultOfNaive(std::min(amount, kMostForNaive));
        const std::optional<Result> vantor = result(amount, scoreOf<Vantor>);
        if (!naive || !vantor)
            return false; // a process died, and has said why
        const std::uint64_t lost = vantor->score.lost;
        const bool isKnown = attack()->isKnownRest() && lost > 0;
        print("a simple deleter", *naive,
              naive->score.lost > 0 ? "" : ": the attack proves nothing");
        print("Vantor", *vantor, isKnown ? ", which docs/safety.md says" : "");
        return naive->score.lost > 0 && (lost == 0 || isKnown) && vantor->score.moves > 0 &&
               vantor->score.removed > 0;
    }

private:
    static constexpr std::int64_t kMostForNaive = 10; ///< seconds
    using Contest = Duel::Score (*)(Attack &, const AttackGround &, milliseconds);
    struct Result
    {
        std::int64_t seconds = 0;
        Duel::Score score;
    };

    /// On a busy machine it may take some time until something is lost.
    std::optional<Result> resultOfNaive(std::int64_t seconds) const
    {
        constexpr int kMostTimes = 10;
        Result all;
        for (int time = 0; time < kMostTimes && all.score.lost == 0; ++time) {
            const std::optional<Result> more = result(seconds, scoreOf<TrustingCleaner>);
            if (!more)
                return std::nullopt;
            all.seconds += more->seconds;
            all.score += more->score;
        }
        return all;
    }

    /// Several pairs of processes side by side, each on a ground of its own.
    std::optional<Result> result(std::int64_t seconds, Contest contest) const
    {
        const int pairs = std::max(1, m_command.processes() / 2);
        const auto score = sideBySide<Duel::Score>(pairs, [&](int number) {
            const AttackGround ground(m_disk.folder() + '/' + QByteArray::number(number));
            return contest(*attack(ground), ground, std::chrono::seconds(seconds));
        });
        return score ? std::optional(Result{seconds, *score}) : std::nullopt;
    }

    void print(const char *whose, const Result &result, const char *remark) const
    {
        const auto &[seconds, score] = result;
        printRow(QByteArray("attack on ") + whose + ": " + attack()->description(), m_disk.where(),
                 counted(std::uint64_t(seconds)) + " s, " + counted(score.moves) + " moves, " +
                     counted(score.cleanings) + " cleanings of " + counted(score.removed) +
                     " items",
                 counted(score.lost) + " lost" + remark);
    }

    std::unique_ptr<Attack> attack(const AttackGround &ground = AttackGround({})) const
    {
        return std::move(allAttacks(ground)[m_attack]);
    }

    const SoakCommand &m_command;
    const SoakDisk &m_disk;
    std::size_t m_attack;
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const SoakCommand command(
        "Attacks cleanings from another process.", "How many seconds each attack lasts.",
        {{QStringLiteral("attack"), QStringLiteral("Only the attack of this name."),
          QStringLiteral("NAME")}});
    const SoakDisk disk(command.disk(), command.user());
    const auto attacks = allAttacks(AttackGround({}));
    int tried = 0;
    bool isWell = true;
    for (std::size_t i = 0; i < attacks.size(); ++i) {
        if ((command.isSet("attack") && command.value("attack") != attacks[i]->name()) ||
            (attacks[i]->needsAdministrator() && !disk.isAdministrator()))
            continue;
        ++tried;
        isWell = Trial(command, disk, i).run() && isWell;
    }
    return isWell && tried > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
