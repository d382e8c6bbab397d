#include "tests/support/run/ChildProcess.h"

#include <QtGlobal>
#include <array>
#include <cerrno>
#include <csignal>
#include <grp.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kCouldNotDropRights = 127;

/// noexcept: an exception must not reach the caller, which is a copy of the test.
[[noreturn]] void runAndLeave(ChildUser user, const std::function<int()> &work,
                              int errorPipe) noexcept
{
    ::dup2(errorPipe, STDERR_FILENO);
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    // The test framework's own handlers would write to the parent's log and print a stack trace.
    qInstallMessageHandler(nullptr);
    for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTERM})
        ::signal(signal, SIG_DFL);
    if (user == ChildUser::Nobody && !becomeNobody())
        ::_exit(kCouldNotDropRights);
    ::_exit(work());
}

QByteArray readToEnd(int descriptor)
{
    QByteArray text;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t size = ::read(descriptor, buffer.data(), buffer.size());
        if (size > 0)
            text.append(buffer.data(), size);
        else if (size == 0 || errno != EINTR)
            return text;
    }
}

} // namespace

bool becomeNobody()
{
    if (::geteuid() != 0)
        return true; // an ordinary user runs the tests
    return ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
}

ChildOutcome runInChild(ChildUser user, const std::function<int()> &work)
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        qFatal("no pipe to a child process");
    const pid_t child = ::fork();
    if (child < 0)
        qFatal("no child process");
    if (child == 0)
        runAndLeave(user, work, ends[1]);
    ::close(ends[1]);

    ChildOutcome outcome;
    outcome.errorText = readToEnd(ends[0]);
    ::close(ends[0]);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    if (WIFEXITED(status))
        outcome.exitCode = WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        outcome.signal = WTERMSIG(status);
    return outcome;
}
