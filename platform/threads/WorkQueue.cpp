#include "platform/threads/WorkQueue.h"

WorkQueue::WorkQueue(unsigned threads)
{
    for (unsigned i = 0; i < threads; ++i)
        m_threads.emplace_back([this](const std::stop_token &stop) { run(stop); });
}

WorkQueue::~WorkQueue()
{
    // All at once: each would else be waited for before the next one is told.
    for (std::jthread &thread : m_threads)
        thread.request_stop();
}

void WorkQueue::push(Job job)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_jobs.push_back(std::move(job));
    }
    m_arrived.notify_one();
}

void WorkQueue::run(const std::stop_token &stop)
{
    for (;;) {
        Job job;
        {
            std::unique_lock lock(m_mutex);
            m_arrived.wait(lock, stop, [this] { return !m_jobs.empty(); });
            if (stop.stop_requested())
                return;
            job = std::move(m_jobs.front());
            m_jobs.pop_front();
        }
        job(stop);
    }
}
