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

std::atomic<bool> &isOn()
{
    static constinit std::atomic<bool> value = false;
    return value;
}

std::terminate_handler &formerTerminate()
{
    static constinit std::terminate_handler value = nullptr;
    return value;
}

void stopWork()
{
    stopBackgroundThreads();
    waitForBackgroundThreads(kPatience);
}

void leave()
{
    if (!isOn())
        return;
    stopWork();
    endProcess({.exitCode = EXIT_FAILURE});
}

/// The thread that failed never ends, but the others do.
[[noreturn]] void terminate()
{
    stopWork();
    formerTerminate()();
    std::abort();
}

} // namespace

ExitGuard::ExitGuard()
{
    [[maybe_unused]] static const bool isRegistered = std::atexit(leave) == 0;
    formerTerminate() = std::set_terminate(terminate);
    isOn() = true;
}

ExitGuard::~ExitGuard()
{
    isOn() = false;
    std::set_terminate(formerTerminate());
}
