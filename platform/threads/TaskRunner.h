#pragma once

#include "platform/threads/ReplyChannel.h"
#include "platform/threads/ThreadPriority.h"

#include <functional>
#include <memory>
#include <stop_token>

/// The part of a BackgroundQueue that does not depend on the queue's type. Runs tasks on background
/// threads, in the order in which they were added, and their replies on its own thread. There are
/// threads only while there is something to do. A member of its queue; used on that queue's thread
/// alone.
class TaskRunner final
{
public:
    using Reply = ReplyChannel::Message;
    using Task = std::function<Reply(const std::stop_token &)>;

    /// Runs at most this many tasks at a time.
    explicit TaskRunner(unsigned threads, ThreadPriority priority = ThreadPriority::Usual);
    /// Does not wait. No reply runs any more.
    ~TaskRunner();
    TaskRunner(const TaskRunner &) = delete;
    TaskRunner &operator=(const TaskRunner &) = delete;

    void add(Task task);
    /// Forgets the tasks that wait, tells those under way to stop, and drops the replies of all
    /// that were added until now. Returns at once.
    void stop();
    /// Waits until no task is under way and none waits.
    void waitUntilIdle();

    /// How many tasks are neither forgotten nor finished with their reply.
    qsizetype unfinishedCount() const { return m_unfinished; }

private:
    struct Shared;

    const unsigned m_mostThreads;
    const ThreadPriority m_priority;
    ReplyChannel m_channel;
    std::shared_ptr<Shared> m_shared; ///< with the threads, which may outlive this
    std::stop_source m_stop;          ///< of all tasks since the last stop
    qsizetype m_unfinished = 0;
};
