#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <sys/types.h>

/// How the work of a process ended.
enum class WorkEnd {
    Done,
    Killed, ///< by SIGKILL
    Failed, ///< in any other way
};

/// A process that works until this object goes, and is killed then. It is a copy of this one
/// without its other threads.
class RunningProcess final
{
public:
    explicit RunningProcess(const std::function<void()> &work);
    ~RunningProcess();
    RunningProcess(const RunningProcess &) = delete;
    RunningProcess &operator=(const RunningProcess &) = delete;

    void kill() const;
    /// Waits for the end. Once.
    WorkEnd end();

private:
    pid_t m_process = -1; ///< -1 once the end was awaited
};

/// Does the work in a process of its own, a copy of this one without its other threads, and waits
/// for its end. Kills it after this time, wherever it is then; without a time only the work itself
/// can do so. Unlike runInChild() this is made for thousands of short lives.
WorkEnd runAndKill(const std::function<void()> &work,
                   std::optional<std::chrono::microseconds> after = {});
