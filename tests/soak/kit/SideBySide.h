#pragma once

#include "tests/support/run/Must.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <functional>
#include <optional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <type_traits>
#include <unistd.h>

/// Does the work in several processes side by side, each with a number from 0, and adds up their
/// tallies. Nothing when one of them died. For a process with one thread.
template <typename Tally>
std::optional<Tally> sideBySide(int processes, const std::function<Tally(int number)> &work)
{
    static_assert(std::is_trivially_copyable_v<Tally>);
    std::array<int, 2> pipe{};
    must(::pipe(pipe.data()) == 0, "a pipe");
    std::fflush(nullptr); // or each process would print it again
    for (int number = 0; number < processes; ++number) {
        const pid_t child = ::fork();
        must(child >= 0, "a process");
        if (child != 0)
            continue;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const Tally tally = work(number);
        const bool isTold = ::write(pipe[1], &tally, sizeof tally) == ssize_t(sizeof tally);
        ::_exit(isTold ? 0 : 1);
    }
    ::close(pipe[1]);
    Tally sum{};
    bool areAllWell = true;
    for (int number = 0; number < processes; ++number) {
        Tally tally{};
        int status = 0;
        while (::wait(&status) < 0 && errno == EINTR)
            continue;
        areAllWell = areAllWell && WIFEXITED(status) && WEXITSTATUS(status) == 0;
        if (areAllWell && ::read(pipe[0], &tally, sizeof tally) == ssize_t(sizeof tally))
            sum += tally;
    }
    ::close(pipe[0]);
    return areAllWell ? std::optional(sum) : std::nullopt;
}
