// Another process makes hostile moves as fast as it can, while this one cleans again and again.
// Each attack is tried on a simple deleter first, which has to lose something.
#include "tests/slices/kit/CleaningKit.h"
#include "tests/soak/attack/Duel.h"
#include "tests/soak/kit/SoakDisk.h"
#include "tests/soak/kit/Workers.h"
#include "tests/support/disk/Moments.h"
#include "tests/support/run/SharedMemory.h"

#include <QCoreApplication>
#include <algorithm>

namespace {

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

/// What one attack on one deleter has come to, in several pairs of processes.
struct Result
{
    std::int64_t seconds = 0;
    bool isWhole = true; ///< no process died
    SharedMemory<Duel::Score> score;
};

/// One attack on both.
class Trial final
{
public:
    Trial(const Workers &workers, const SoakDisk &disk, std::size_t attack)
        : m_workers(workers), m_disk(disk), m_attack(attack)
    {
    }

    /// The simple deleter has to lose something, and Vantor nothing.
    void run() const
    {
        const auto amount = static_cast<std::int64_t>(m_workers.part().amount());
        Result trusting;
        Result vantor;
        contestTrusting(std::min(amount, kMostForTrusting), trusting);
        contest<Vantor>(amount, vantor);
        const bool isProof = trusting.score->lost > 0;
        print("a simple deleter", trusting, isProof ? "" : ": the attack proves nothing", isProof);
        const bool isLost = vantor.score->lost > 0;
        print("Vantor", vantor, "",
              !isLost && vantor.score->moves > 0 && vantor.score->removed > 0);
    }

private:
    static constexpr std::int64_t kMostForTrusting = 10; ///< seconds

    /// On a busy machine it may take some time until something is lost.
    void contestTrusting(std::int64_t seconds, Result &result) const
    {
        constexpr int kMostTimes = 10;
        for (int time = 0; time < kMostTimes && result.score->lost == 0 && result.isWhole; ++time)
            contest<TrustingCleaner>(seconds, result);
    }

    /// Several pairs of processes side by side, each on a ground of its own.
    template <typename Cleaner> void contest(std::int64_t seconds, Result &result) const
    {
        const int pairs = std::max(1, m_workers.count() / 2);
        const auto dead = workSideBySide(pairs, [&](int number) {
            const AttackGround ground(m_disk.folder() + '/' + QByteArray::number(number));
            const auto attacker = attack(ground);
            Duel duel(*attacker, *result.score);
            Cleaner cleaner(*attacker, ground);
            duel.run(std::chrono::seconds(seconds), cleaner);
        });
        result.seconds += seconds;
        result.isWhole = result.isWhole && dead.empty();
    }

    void print(const char *whose, const Result &result, const char *remark, bool isWell) const
    {
        const Duel::Score &score = *result.score;
        m_workers.part().print(
            {QByteArray("attack on ") + whose + ": " + attack()->description(), m_disk.where(),
             grouped(std::uint64_t(result.seconds)) + " s, " + grouped(score.moves) + " moves, " +
                 grouped(score.cleanings) + " cleanings of " + grouped(score.removed) + " items",
             grouped(score.lost) + " lost" + remark + (result.isWhole ? "" : ", a process died"),
             isWell && result.isWhole ? 0U : 1U});
    }

    std::unique_ptr<Attack> attack(const AttackGround &ground = AttackGround({})) const
    {
        return std::move(allAttacks(ground)[m_attack]);
    }

    const Workers &m_workers;
    const SoakDisk &m_disk;
    std::size_t m_attack;
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    SoakPart part(
        {"Attacks cleanings from another process.", "How many seconds each attack lasts."},
        SoakDisk::options() + Workers::options() +
            QList{soakOption("attack", "Only the attack of this name.", "NAME")});
    const Workers workers(part);
    const SoakDisk disk(part);
    const auto attacks = allAttacks(AttackGround({}));
    int tried = 0;
    for (std::size_t i = 0; i < attacks.size(); ++i) {
        if ((part.isSet("attack") && part.value("attack") != attacks[i]->name()) ||
            (attacks[i]->needsAdministrator() && !disk.isAdministrator()))
            continue;
        ++tried;
        Trial(workers, disk, i).run();
    }
    return tried > 0 ? part.exitCode() : EXIT_FAILURE;
}
