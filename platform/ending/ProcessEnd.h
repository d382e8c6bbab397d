#pragma once

#include <chrono>

/// How a process ends, as its parent sees it.
struct ProcessEnd
{
    int exitCode = 0;
    /// The signal that asked for the end; 0 for none. A process that was asked to end by a signal
    /// ends by that very signal, once everything is in order: so a shell, or the manager of the
    /// session, sees that it obeyed. An exit code would look like a failure.
    int signal = 0;
};

/// Ends the process at once and destroys nothing: threads may still use anything. Any thread.
[[noreturn]] void endProcess(const ProcessEnd &end);

/// Ends the process like this when it is still there after this time, whatever its threads wait
/// for. Once; main thread only.
void endProcessAfter(std::chrono::seconds patience, const ProcessEnd &end);
