#include "tests/soak/kit/Workers.h"

#include "tests/support/run/Must.h"
#include "tests/support/run/SharedMemory.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned kLongestCase = 300; // seconds
constexpr unsigned kMostWorkers = 64;
constexpr std::uint64_t kMostPrinted = 40;

/// What the processes count together.
struct Tally
{
    std::atomic<std::uint64_t> next = 0;                          ///< the number of the next case
    std::atomic<std::uint64_t> done = 0;                          ///< cases that count
    std::atomic<std::uint64_t> found = 0;                         ///< findings
    std::array<std::atomic<std::uint64_t>, kMostWorkers> cases{}; ///< which each one makes now
};

void work(Tally &tally, unsigned worker, std::uint64_t wanted, std::uint64_t most,
          const std::function<CaseResult(std::uint64_t)> &make)
{
    while (tally.done < wanted) {
        const std::uint64_t number = tally.next++;
        if (number >= most)
            return;
        tally.cases[worker] = number;
        ::alarm(kLongestCase);
        const CaseResult result = make(number);
        ::alarm(0);
        tally.done += result.counts;
        for (const QByteArray &wrong : result.wrong) {
            if (tally.found++ < kMostPrinted)
                std::fprintf(stderr, "FOUND in case %llu: %s\n",
                             static_cast<unsigned long long>(number), wrong.constData());
        }
    }
}

/// A process that did not come to its end is a finding.
void await(pid_t process, unsigned worker, Tally &tally)
{
    int status = 0;
    ::waitpid(process, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return;
    ++tally.found;
    std::fprintf(stderr,
                 "FOUND: a process ended by signal %d (%d: it took too long) in case %llu\n",
                 WIFSIGNALED(status) ? WTERMSIG(status) : 0, SIGALRM,
                 static_cast<unsigned long long>(tally.cases[worker]));
}

} // namespace

CaseTotals makeCases(std::uint64_t wanted, std::uint64_t most,
                     const std::function<CaseResult(std::uint64_t)> &make)
{
    const SharedMemory<Tally> tally;
    std::vector<pid_t> workers;
    const unsigned count =
        std::min(std::max(std::thread::hardware_concurrency(), 1U), kMostWorkers);
    for (unsigned worker = 0; worker < count; ++worker) {
        const pid_t process = ::fork();
        must(process >= 0, "a process");
        if (process == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            work(*tally, worker, wanted, most, make);
            ::_exit(0);
        }
        workers.push_back(process);
    }
    for (unsigned worker = 0; worker < workers.size(); ++worker)
        await(workers[worker], worker, *tally);
    return {tally->done, tally->found};
}
