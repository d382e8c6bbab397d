#include "tests/soak/attack/Duel.h"

#include "tests/support/run/Must.h"

#include <csignal>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

Duel::Duel(Attack &attack, Score &score) : m_attack(attack), m_score(score), m_process(::fork())
{
    must(m_process >= 0, "a process");
    if (m_process == 0)
        attackAll();
}

Duel::~Duel()
{
    *m_phase = Phase::End;
    ::waitpid(m_process, nullptr, 0);
}

void Duel::attackAll()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    while (*m_phase != Phase::End) {
        m_attack.prepare();
        Phase preparing = Phase::Preparing;
        m_phase->compare_exchange_strong(preparing, Phase::Ready);
        while (*m_phase == Phase::Ready)
            ::sched_yield();
        while (*m_phase == Phase::Striking)
            m_score.moves += std::uint64_t(m_attack.strike());
        m_score.lost += std::uint64_t(m_attack.finish());
        Phase finishing = Phase::Finishing;
        m_phase->compare_exchange_strong(finishing, Phase::Preparing);
    }
    ::_exit(0);
}

void Duel::awaitReady() const
{
    while (*m_phase != Phase::Ready) {
        must(::waitpid(m_process, nullptr, WNOHANG) == 0, "the attacker has died");
        ::sched_yield();
    }
}

void Duel::run(std::chrono::milliseconds time, AttackedCleaner &cleaner)
{
    const auto end = std::chrono::steady_clock::now() + time;
    awaitReady();
    while (std::chrono::steady_clock::now() < end) {
        cleaner.confirm();
        *m_phase = Phase::Striking;
        m_score.removed += cleaner.clean();
        *m_phase = Phase::Finishing;
        ++m_score.cleanings;
        awaitReady();
    }
}
