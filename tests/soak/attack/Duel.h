#pragma once

#include "tests/soak/attack/Attack.h"
#include "tests/support/run/SharedMemory.h"

#include <atomic>
#include <chrono>
#include <sys/types.h>

/// What is attacked.
class AttackedCleaner
{
public:
    AttackedCleaner() = default;
    virtual ~AttackedCleaner() = default;
    AttackedCleaner(const AttackedCleaner &) = delete;
    AttackedCleaner &operator=(const AttackedCleaner &) = delete;

    /// The user consents: what comes later stays. Nobody attacks yet.
    virtual void confirm() = 0;
    /// Returns how many items went.
    virtual std::uint64_t clean() = 0;
};

/// An attack in a process of its own, against cleanings in this one. Each cleaning begins when
/// everything is made; the attack goes on from its confirmation to its end.
class Duel final
{
public:
    /// Of several duels together.
    struct Score
    {
        std::atomic<std::uint64_t> moves = 0;
        std::atomic<std::uint64_t> cleanings = 0;
        std::atomic<std::uint64_t> removed = 0;
        std::atomic<std::uint64_t> lost = 0;
    };

    /// The score is shared by all processes that add to it.
    Duel(Attack &attack, Score &score);
    ~Duel();
    Duel(const Duel &) = delete;
    Duel &operator=(const Duel &) = delete;

    void run(std::chrono::milliseconds time, AttackedCleaner &cleaner);

private:
    enum class Phase { Preparing, Ready, Striking, Finishing, End };

    [[noreturn]] void attackAll();
    void awaitReady() const;

    Attack &m_attack;
    Score &m_score;
    const SharedMemory<std::atomic<Phase>> m_phase;
    pid_t m_process;
};
