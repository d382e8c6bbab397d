#include "platform/threads/TaskRunner.h"

#include "platform/threads/BackgroundThreads.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

struct TaskRunner::Shared
{
    struct Entry
    {
        Task task;
        std::function<void(Reply)> reply; ///< takes it to the owner's thread
        std::stop_source stop;
    };

    /// The next entry; nothing when there is none: then the thread must end.
    std::optional<Entry> next();
    void serve();

    std::mutex mutex; ///< guards all
    std::condition_variable becameIdle;
    std::deque<Entry> waiting;
    unsigned threads = 0; ///< that run tasks
};

std::optional<TaskRunner::Shared::Entry> TaskRunner::Shared::next()
{
    const std::scoped_lock lock(mutex);
    if (waiting.empty()) {
        if (--threads == 0)
            becameIdle.notify_all();
        return std::nullopt;
    }
    std::optional entry(std::move(waiting.front()));
    waiting.pop_front();
    return entry;
}

void TaskRunner::Shared::serve()
{
    while (std::optional<Entry> entry = next()) {
        Reply reply;
        {
            const std::stop_callback endWithTheProgram(
                endOfBackgroundThreads(), [&stop = entry->stop] { stop.request_stop(); });
            reply = entry->task(entry->stop.get_token());
        }
        // Destroys here what only the task holds; what the reply holds stays.
        entry->task = nullptr;
        entry->reply(std::move(reply));
    }
}

TaskRunner::TaskRunner(unsigned threads, ThreadPriority priority)
    : m_mostThreads(threads), m_priority(priority), m_shared(std::make_shared<Shared>())
{
}

TaskRunner::~TaskRunner()
{
    stop();
}

void TaskRunner::add(Task task)
{
    const std::stop_token stop = m_stop.get_token();
    auto reply = [this, sender = m_channel.sender(), stop](Reply made) {
        sender.post([this, stop, made = std::move(made)] {
            --m_unfinished;
            if (!stop.stop_requested() && made)
                made(); // may destroy this
        });
    };
    ++m_unfinished;
    const std::scoped_lock lock(m_shared->mutex);
    m_shared->waiting.push_back({std::move(task), std::move(reply), m_stop});
    if (m_shared->threads == m_mostThreads)
        return;
    ++m_shared->threads;
    startBackgroundThread([shared = m_shared, priority = m_priority] {
        setThreadPriority(priority);
        shared->serve();
    });
}

void TaskRunner::stop()
{
    m_stop.request_stop();
    m_stop = std::stop_source();
    std::deque<Shared::Entry> forgotten; // destroyed unlocked: a destructor may do anything
    {
        const std::scoped_lock lock(m_shared->mutex);
        m_shared->waiting.swap(forgotten);
    }
    m_unfinished -= std::ssize(forgotten);
}

void TaskRunner::waitUntilIdle()
{
    std::unique_lock lock(m_shared->mutex);
    m_shared->becameIdle.wait(lock, [this] { return m_shared->threads == 0; });
}
