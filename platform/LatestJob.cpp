#include "platform/LatestJob.h"

LatestJob::LatestJob(QObject *parent)
    : QObject(parent), m_thread([this](const std::stop_token &end) { serve(end); })
{
}

LatestJob::~LatestJob()
{
    stop();
}

void LatestJob::run(Work work)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_stop.request_stop();
        m_stop = std::stop_source();
        m_waiting = std::move(work);
        m_number = ++m_latest;
    }
    m_arrived.notify_one();
}

void LatestJob::stop()
{
    const std::scoped_lock lock(m_mutex);
    m_stop.request_stop();
    m_waiting = {};
    ++m_latest;
}

void LatestJob::serve(const std::stop_token &end)
{
    for (;;) {
        std::unique_lock lock(m_mutex);
        m_arrived.wait(lock, end, [this] { return bool(m_waiting); });
        if (end.stop_requested())
            return;
        const Work work = std::exchange(m_waiting, {});
        const std::stop_token stop = m_stop.get_token();
        const quint64 number = m_number;
        lock.unlock();
        Answer result = work(stop);
        if (!stop.stop_requested())
            QMetaObject::invokeMethod(
                this, [this, number, result = std::move(result)] { answer(number, result); },
                Qt::QueuedConnection);
    }
}

void LatestJob::answer(quint64 number, const Answer &answer)
{
    if (number == m_latest && answer)
        answer();
}
