#include "platform/ending/ExitGuard.h"

#include "platform/ending/ProcessEnd.h"
#include "platform/threads/BackgroundThreads.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <exception>

namespace {

using namespace std::chrono_literals;
/// A removal ends at its next item; only a disk that does not answer takes longer.
constexpr auto kPatience = 5s;

constinit std::atomic<bool> s_isOn = false;
constinit std::terminate_handler s_terminate = nullptr;

void stopWork()
{
    stopBackgroundThreads();
    waitForBackgroundThreads(kPatience);
}

void leave()
{
    if (!s_isOn)
        return;
    stopWork();
    endProcess({.exitCode = EXIT_FAILURE});
}

/// The thread that failed never ends, but the others do.
[[noreturn]] void terminate()
{
    stopWork();
    s_terminate();
    std::abort();
}

} // namespace

ExitGuard::ExitGuard()
{
    [[maybe_unused]] static const bool isRegistered = std::atexit(leave) == 0;
    s_terminate = std::set_terminate(terminate);
    s_isOn = true;
}

ExitGuard::~ExitGuard()
{
    s_isOn = false;
    std::set_terminate(s_terminate);
}
