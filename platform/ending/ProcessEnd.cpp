#include "platform/ending/ProcessEnd.h"

#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t s_lateCode = 0;
volatile std::sig_atomic_t s_lateSignal = 0;

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
    leave(s_lateCode, s_lateSignal);
}

} // namespace

void endProcess(const ProcessEnd &end)
{
    leave(end.exitCode, end.signal);
}

void endProcessAfter(std::chrono::seconds patience, const ProcessEnd &end)
{
    s_lateCode = end.exitCode;
    s_lateSignal = end.signal;
    ::signal(SIGALRM, leaveLate);
    ::alarm(static_cast<unsigned>(patience.count()));
}
