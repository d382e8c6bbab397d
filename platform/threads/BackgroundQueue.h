#pragma once

#include "platform/threads/TaskRunner.h"

#include <concepts>
#include <limits>
#include <type_traits>
#include <utility>

/// What happens to the tasks under way when the owner of their queue ends. In both cases they are
/// told to stop, and tasks that wait are forgotten.
enum class OwnersEnd {
    /// The destructor waits for them: they may use their owner's members, and change files. The
    /// queue is its owner's last member, so that the tasks end before the members that they use.
    Wait,
    /// Nothing waits for them, so a disk that never answers does not keep the program from ending.
    /// They may outlive their owner: they use nothing but their own values and what lives as long
    /// as the program; only their replies use the owner. They change none of the user's files.
    Abandon
};

/// What happens to older tasks when a newer one comes.
enum class Queueing {
    /// Only the latest counts: those that wait are forgotten, those that are under way are told to
    /// stop, and none of them is replied to any more.
    LatestOnly,
    /// All are done, in the order in which they were added.
    All
};

/// The result of a task, as a function that runs on the owner's thread; may be empty.
using BackgroundReply = TaskRunner::Reply;

/// Runs on a background thread, and should end soon after its token says so. Returns a reply, or
/// nothing. The type says what it may use: see OwnersEnd.
template <OwnersEnd kOwnersEnd> class BackgroundTask final
{
public:
    template <std::invocable<const std::stop_token &> Function> BackgroundTask(Function function)
    {
        using Result = std::invoke_result_t<Function &, const std::stop_token &>;
        if constexpr (std::is_void_v<Result>)
            m_run = [run = std::move(function)](const std::stop_token &stop) mutable {
                run(stop);
                return BackgroundReply();
            };
        else
            m_run = std::move(function);
    }

    TaskRunner::Task take() && { return std::move(m_run); }

private:
    TaskRunner::Task m_run;
};

/// For a queue in which no task waits for another: a task that hangs does not hold up a later one.
inline constexpr unsigned kThreadForEachTask = std::numeric_limits<unsigned>::max();

/// Does work beside its owner's thread. That thread's event loop runs the replies, in the order in
/// which the tasks end. No reply runs after stop() or the end of the queue; what such a reply holds
/// is still destroyed on the owner's thread or on the main one. A member of its owner; used on its
/// owner's thread alone.
template <OwnersEnd kOwnersEnd, Queueing kQueueing> class BackgroundQueue final
{
public:
    using Task = BackgroundTask<kOwnersEnd>;

    /// Runs at most this many tasks at a time.
    explicit BackgroundQueue(unsigned threads = 1, ThreadPriority priority = ThreadPriority::Usual)
        : m_runner(threads, priority)
    {
    }
    ~BackgroundQueue()
    {
        stop();
        if constexpr (kOwnersEnd == OwnersEnd::Wait)
            m_runner.waitUntilIdle();
    }
    BackgroundQueue(const BackgroundQueue &) = delete;
    BackgroundQueue &operator=(const BackgroundQueue &) = delete;

    /// Returns at once.
    void run(Task task)
    {
        if constexpr (kQueueing == Queueing::LatestOnly)
            stop();
        m_runner.add(std::move(task).take());
    }

    /// Forgets what waits, tells what is under way to stop, and drops the replies. Returns at once.
    void stop() { m_runner.stop(); }

    /// Whether a task waits or is under way, or its reply is on its way; stopped ones included.
    bool isBusy() const { return m_runner.unfinishedCount() > 0; }
    qsizetype unfinishedCount() const { return m_runner.unfinishedCount(); }

private:
    TaskRunner m_runner;
};
