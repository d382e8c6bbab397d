#include "tests/soak/kit/Workers.h"

#include "tests/support/run/Must.h"
#include "tests/support/run/SharedMemory.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr unsigned kLongestCase = 300; // seconds
constexpr int kMostWorkers = 256;
constexpr std::uint64_t kMostPrinted = 40;

/// What the processes count together.
struct Tally
{
    std::atomic<std::uint64_t> next = 0;  ///< the number of the next case
    std::atomic<std::uint64_t> done = 0;  ///< cases that count
    std::atomic<std::uint64_t> found = 0; ///< findings
    /// Which one each process makes now.
    std::array<std::atomic<std::uint64_t>, kMostWorkers> cases{};
};

void tell(std::uint64_t number, const char *wrong)
{
    std::fprintf(stderr, "FOUND in case %llu: %s\n", static_cast<unsigned long long>(number),
                 wrong);
}

/// Whether the process came to its end.
bool isDone(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR)
        continue;
    if (WIFSIGNALED(status))
        std::fprintf(stderr, "a process was ended by signal %d (%s)\n", WTERMSIG(status),
                     ::strsignal(WTERMSIG(status)));
    else if (WEXITSTATUS(status) != 0)
        std::fprintf(stderr, "a process ended with %d\n", WEXITSTATUS(status));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

QByteArray CaseTotals::deaths() const
{
    if (died == 0)
        return {};
    return ", " + grouped(died) + (died == 1 ? " process died" : " processes died");
}

QList<QCommandLineOption> Workers::options()
{
    return {soakOption("processes", "As many processes work side by side.", "P")};
}

Workers::Workers(SoakPart &part)
    : m_part(part), m_count(std::clamp(int(std::thread::hardware_concurrency()), 1, kMostWorkers))
{
    bool isNumber = true;
    if (part.isSet("processes"))
        m_count = part.value("processes").toInt(&isNumber);
    if (!isNumber || m_count < 1 || m_count > kMostWorkers)
        SoakPart::complain("processes");
}

CaseTotals Workers::makeCases(std::uint64_t wanted, std::uint64_t most,
                              const std::function<CaseResult(std::uint64_t number)> &make) const
{
    const SharedMemory<Tally> tally;
    const auto work = [&](int worker) {
        while (tally->done < wanted) {
            const std::uint64_t number = tally->next++;
            if (number >= most)
                return;
            tally->cases[std::size_t(worker)] = number;
            ::alarm(kLongestCase);
            const CaseResult result = make(number);
            ::alarm(0);
            tally->done += result.counts;
            for (const QByteArray &wrong : result.wrong) {
                if (tally->found++ < kMostPrinted)
                    tell(number, wrong.constData());
            }
        }
    };
    const std::vector<int> dead = workSideBySide(m_count, work);
    for (const int worker : dead)
        tell(tally->cases[std::size_t(worker)], "its process did not come to its end");
    return {tally->done, tally->found + dead.size(), dead.size()};
}

std::vector<int> workSideBySide(int processes, const std::function<void(int number)> &work)
{
    std::vector<pid_t> started;
    std::fflush(nullptr); // or each process would print it again
    for (int number = 0; number < processes; ++number) {
        const pid_t process = ::fork();
        must(process >= 0, "a process");
        if (process == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            work(number);
            ::_exit(0);
        }
        started.push_back(process);
    }
    std::vector<int> dead;
    for (int number = 0; number < processes; ++number) {
        if (!isDone(started[std::size_t(number)]))
            dead.push_back(number);
    }
    return dead;
}
