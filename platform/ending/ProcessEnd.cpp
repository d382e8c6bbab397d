#include "platform/ending/ProcessEnd.h"

#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t &lateCode()
{
    static constinit volatile std::sig_atomic_t value = 0;
    return value;
}

volatile std::sig_atomic_t &lateSignal()
{
    static constinit volatile std::sig_atomic_t value = 0;
    return value;
}

/// Calls only what a signal handler may call.
[[noreturn]] void leave(int exitCode, int signal)
{
    if (signal != 0) {
        ::signal(signal, SIG_DFL);
        sigset_t own;
        sigemptyset(&own);
        sigaddset(&own, signal);
        ::pthread_sigmask(SIG_UNBLOCK, &own, nullptr);
        ::raise(signal);
    }
    std::_Exit(exitCode);
}

void leaveLate(int)
{
    leave(lateCode(), lateSignal());
}

} // namespace

void endProcess(const ProcessEnd &end)
{
    leave(end.exitCode, end.signal);
}

void endProcessAfter(std::chrono::seconds patience, const ProcessEnd &end)
{
    lateCode() = end.exitCode;
    lateSignal() = end.signal;
    ::signal(SIGALRM, leaveLate);
    ::alarm(static_cast<unsigned>(patience.count()));
}
