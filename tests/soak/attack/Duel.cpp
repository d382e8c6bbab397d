#include "tests/soak/attack/Duel.h"

#include "tests/support/run/Must.h"

#include <csignal>
#include <new>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

Duel::Score &Duel::Score::operator+=(const Score &other)
{
    moves += other.moves;
    cleanings += other.cleanings;
    removed += other.removed;
    lost += other.lost;
    return *this;
}

Duel::Duel(Attack &attack) : m_attack(attack)
{
    void *const memory =
        ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    must(memory != MAP_FAILED, "memory that two processes share");
    m_shared = new (memory) Shared;
    m_process = ::fork();
    must(m_process >= 0, "a process");
    if (m_process == 0)
        attackAll();
}

Duel::~Duel()
{
    m_shared->phase = Phase::End;
    ::waitpid(m_process, nullptr, 0);
    ::munmap(m_shared, sizeof(Shared));
}

void Duel::attackAll()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    while (m_shared->phase != Phase::End) {
        m_attack.prepare();
        Phase preparing = Phase::Preparing;
        m_shared->phase.compare_exchange_strong(preparing, Phase::Ready);
        while (m_shared->phase == Phase::Ready)
            ::sched_yield();
        while (m_shared->phase == Phase::Striking)
            m_shared->moves += std::uint64_t(m_attack.strike());
        m_shared->lost += std::uint64_t(m_attack.finish());
        Phase finishing = Phase::Finishing;
        m_shared->phase.compare_exchange_strong(finishing, Phase::Preparing);
    }
    ::_exit(0);
}

void Duel::awaitReady() const
{
    while (m_shared->phase != Phase::Ready) {
        must(::waitpid(m_process, nullptr, WNOHANG) == 0, "the attacker has died");
        ::sched_yield();
    }
}

Duel::Score Duel::run(std::chrono::milliseconds time, AttackedCleaner &cleaner)
{
    Score score;
    const auto end = std::chrono::steady_clock::now() + time;
    awaitReady();
    while (std::chrono::steady_clock::now() < end) {
        cleaner.confirm();
        m_shared->phase = Phase::Striking;
        score.removed += cleaner.clean();
        m_shared->phase = Phase::Finishing;
        ++score.cleanings;
        awaitReady();
    }
    score.moves = m_shared->moves;
    score.lost = m_shared->lost;
    return score;
}
