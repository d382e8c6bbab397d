#pragma once

#include "tests/soak/attack/Attack.h"

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
    struct Score
    {
        std::uint64_t moves = 0;
        std::uint64_t cleanings = 0;
        std::uint64_t removed = 0;
        std::uint64_t lost = 0;

        Score &operator+=(const Score &other);
    };

    explicit Duel(Attack &attack);
    ~Duel();
    Duel(const Duel &) = delete;
    Duel &operator=(const Duel &) = delete;

    Score run(std::chrono::milliseconds time, AttackedCleaner &cleaner);

private:
    enum class Phase { Preparing, Ready, Striking, Finishing, End };
    /// Seen by both processes.
    struct Shared
    {
        std::atomic<Phase> phase = Phase::Preparing;
        std::atomic<std::uint64_t> moves = 0;
        std::atomic<std::uint64_t> lost = 0;
    };

    [[noreturn]] void attackAll();
    void awaitReady() const;

    Attack &m_attack;
    Shared *m_shared;
    pid_t m_process;
};
