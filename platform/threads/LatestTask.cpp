#include "platform/threads/LatestTask.h"

#include "platform/threads/BackgroundThreads.h"

LatestTask::~LatestTask()
{
    stop();
    m_threads.clear();
}

void LatestTask::start(Work work)
{
    stop();
    m_threads.emplace_back([this, work = std::move(work)](const std::stop_token &token) {
        work(token);
        const std::thread::id ended = std::this_thread::get_id();
        QMetaObject::invokeMethod(
            this, [this, ended] { join(ended); }, Qt::QueuedConnection);
    });
}

void LatestTask::ask(Question question)
{
    stop();
    m_stop = std::stop_source();
    ++m_questions;
    startBackgroundThread([this, sender = m_channel.sender(), stop = m_stop.get_token(),
                           question = std::move(question)] {
        sender.post([stop, answer = question(stop)] {
            if (!stop.stop_requested())
                answer();
        });
        sender.post([this] { --m_questions; });
    });
}

void LatestTask::stop()
{
    for (std::jthread &thread : m_threads)
        thread.request_stop();
    m_stop.request_stop();
}

void LatestTask::join(std::thread::id ended)
{
    std::erase_if(m_threads,
                  [ended](const std::jthread &thread) { return thread.get_id() == ended; });
}
