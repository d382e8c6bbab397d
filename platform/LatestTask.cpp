#include "platform/LatestTask.h"

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
    start([this, question = std::move(question)](const std::stop_token &stop) {
        QMetaObject::invokeMethod(
            this,
            [stop, answer = question(stop)] {
                if (!stop.stop_requested())
                    answer();
            },
            Qt::QueuedConnection);
    });
}

void LatestTask::stop()
{
    for (std::jthread &thread : m_threads)
        thread.request_stop();
}

void LatestTask::join(std::thread::id ended)
{
    std::erase_if(m_threads,
                  [ended](const std::jthread &thread) { return thread.get_id() == ended; });
}
