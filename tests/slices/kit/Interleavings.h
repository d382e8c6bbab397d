#pragma once

#include "platform/system/ThreadConfinement.h"
#include "tests/slices/kit/HostileMoves.h"
#include "tests/support/disk/Moments.h"

#include <array>
#include <random>

/// All hostile moves before every call of a cleaning, and two of them before two calls, in each way
/// in which it cleans: with something excluded and without, with threads that are confined and
/// without, with one thread and with several. For a process that stays unconfined; it logs what the
/// cleanings log.
class Interleavings final
{
public:
    struct Way
    {
        AttackedHome::Exclusion exclusion = AttackedHome::Exclusion::Keep;
        AttackedHome::Confinement confinement = AttackedHome::Confinement::Off;
        bool isForOneThread = true;
    };
    struct Step
    {
        std::size_t move = 0;
        int call = 0;
    };
    struct Interleaving
    {
        Way way;
        Step first;
        std::optional<Step> second = {};
    };
    struct Outcome
    {
        QByteArrayList lost;
        std::size_t chosenLeft = 0;
    };
    using Found = std::function<void(const Interleaving &, const Outcome &)>;

    static constexpr std::size_t kWays = 8;
    /// How many calls a cleaning makes in each way.
    using CallCounts = std::array<int, kWays>;

    /// `around` is a folder that exists, for the homes.
    static CallCounts countCalls(const QByteArray &around)
    {
        CallCounts counts{};
        for (std::size_t way = 0; way < kWays; ++way) {
            const AttackedHome home(around + "/home", ways()[way].exclusion);
            Interloper calls({}, ways()[way].isForOneThread);
            if (!isConfined(ways()[way]))
                calls.letNothingBeConfined();
            home.clean(Moment::never(), calls);
            counts[way] = calls.count();
        }
        return counts;
    }

    Interleavings(const QByteArray &around, Mounting mounting, const CallCounts &counts)
        : m_around(around), m_moves(HostileMoves::all(mounting))
    {
        // A move may lead to more calls.
        constexpr int kBeyond = 8;
        for (std::size_t way = 0; way < kWays; ++way) {
            for (std::size_t move = 0; move < m_moves.size(); ++move) {
                for (int call = 0; call < counts[way] + kBeyond; ++call)
                    m_all.push_back({ways()[way], {move, call}});
            }
        }
    }

    /// One move each.
    const std::vector<Interleaving> &all() const { return m_all; }

    /// Two moves, where one thread makes all calls. They are too many to try them all.
    Interleaving anyPair(std::mt19937 &random) const
    {
        std::uniform_int_distribution<std::size_t> any(0, m_all.size() - 1);
        Interleaving pair = m_all[any(random)];
        pair.way.isForOneThread = true;
        Step second = m_all[any(random)].first;
        while (second.call == pair.first.call)
            second = m_all[any(random)].first;
        pair.second = second;
        return pair;
    }

    QByteArray words(const Interleaving &one) const
    {
        return words(one.first) + (one.second ? "; " + words(*one.second) : QByteArray()) +
               (one.way.exclusion == AttackedHome::Exclusion::Keep ? "" : ", nothing excluded") +
               (isConfined(one.way) ? ", confined" : ", unconfined") +
               (one.way.isForOneThread ? ", one thread" : ", several threads");
    }

    /// The clock's next tick takes longer than a cleaning, so the homes of many are made before
    /// one.
    template <typename Iterator> void run(Iterator first, Iterator last, const Found &found) const
    {
        constexpr int kAtOnce = 64;
        while (first != last) {
            std::vector<std::unique_ptr<AttackedHome>> homes;
            const Iterator start = first;
            for (; first != last && homes.size() < kAtOnce; ++first) {
                const QByteArray name = "/home" + QByteArray::number(qulonglong(homes.size()));
                homes.push_back(
                    std::make_unique<AttackedHome>(m_around + name, first->way.exclusion));
            }
            const Moment confirmed = momentBetween();
            for (std::size_t i = 0; i < homes.size(); ++i) {
                const Interleaving &one = *(start + std::ptrdiff_t(i));
                found(one, runOne(*homes[i], confirmed, one));
            }
        }
    }

private:
    static const std::array<Way, kWays> &ways()
    {
        using Exclusion = AttackedHome::Exclusion;
        using Confinement = AttackedHome::Confinement;
        static const std::array<Way, kWays> all{{{Exclusion::Keep, Confinement::Off, true},
                                                 {Exclusion::Keep, Confinement::Off, false},
                                                 {Exclusion::Keep, Confinement::On, true},
                                                 {Exclusion::Keep, Confinement::On, false},
                                                 {Exclusion::None, Confinement::Off, true},
                                                 {Exclusion::None, Confinement::Off, false},
                                                 {Exclusion::None, Confinement::On, true},
                                                 {Exclusion::None, Confinement::On, false}}};
        return all;
    }
    static bool isConfined(const Way &way)
    {
        return way.confinement == AttackedHome::Confinement::On && hostConfinement().isAvailable();
    }
    QByteArray words(const Step &step) const
    {
        return m_moves[step.move].name + " before call " + QByteArray::number(step.call);
    }

    Outcome runOne(AttackedHome &home, const Moment &confirmed, const Interleaving &one) const
    {
        bool keepsWhatLeaves = isConfined(one.way);
        std::map<int, Interloper::Action> actions;
        for (const auto &step : {std::optional(one.first), one.second}) {
            if (!step)
                continue;
            const HostileMove &move = m_moves[step->move];
            keepsWhatLeaves = keepsWhatLeaves && !move.isOfLocation;
            actions[step->call] = [&] {
                home.suffer([&] { move.act(home.ground()); }, confirmed,
                            keepsWhatLeaves ? AttackedHome::Confinement::On
                                            : AttackedHome::Confinement::Off);
            };
        }
        Interloper calls(std::move(actions), one.way.isForOneThread);
        if (!isConfined(one.way))
            calls.letNothingBeConfined();
        home.clean(confirmed, calls);
        return {home.lost(), home.chosenLeft()};
    }

    QByteArray m_around;
    std::vector<HostileMove> m_moves;
    std::vector<Interleaving> m_all;
};
