#include "platform/threads/LatestJob.h"

#include "platform/threads/BackgroundThreads.h"

#include <mutex>
#include <utility>

/// What waits to be done. There is a thread while there is something to do.
struct LatestJob::Desk
{
    struct Order
    {
        Work work;
        std::function<void(Answer)> reply; ///< takes the answer to the owner's thread
        std::stop_token stop;
    };

    std::mutex mutex; ///< guards all
    Order waiting;
    std::stop_source stop; ///< of what was asked for last
    bool isAtWork = false;

    /// Takes up what waits; nothing when there is nothing: then the thread is to end.
    Order next();
    void serve();
};

LatestJob::Desk::Order LatestJob::Desk::next()
{
    const std::scoped_lock lock(mutex);
    isAtWork = bool(waiting.work);
    return std::exchange(waiting, {});
}

void LatestJob::Desk::serve()
{
    for (Order order = next(); order.work; order = next()) {
        Answer answer = order.work(order.stop);
        if (!order.stop.stop_requested())
            order.reply(std::move(answer));
    }
}

LatestJob::LatestJob(QObject *parent) : QObject(parent), m_desk(std::make_shared<Desk>())
{
}

LatestJob::~LatestJob()
{
    stop();
}

void LatestJob::run(Work work)
{
    const quint64 number = ++m_latest;
    auto reply = [this, number, sender = m_channel.sender()](Answer result) {
        sender.post([this, number, result = std::move(result)] { answer(number, result); });
    };
    const std::scoped_lock lock(m_desk->mutex);
    m_desk->stop.request_stop();
    m_desk->stop = std::stop_source();
    m_desk->waiting = {std::move(work), std::move(reply), m_desk->stop.get_token()};
    if (!std::exchange(m_desk->isAtWork, true))
        startBackgroundThread([desk = m_desk] { desk->serve(); });
}

void LatestJob::stop()
{
    const std::scoped_lock lock(m_desk->mutex);
    m_desk->stop.request_stop();
    m_desk->waiting = {};
    ++m_latest;
}

void LatestJob::answer(quint64 number, const Answer &answer) const
{
    if (number == m_latest && answer)
        answer();
}
