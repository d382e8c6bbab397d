#include "platform/threads/ReplyChannel.h"

#include <QCoreApplication>
#include <QEvent>
#include <deque>
#include <mutex>
#include <utility>

namespace {

constexpr QEvent::Type kPosted = QEvent::User;

void dropOnMainThread(ReplyChannel::Message message)
{
    if (QCoreApplication *const application = QCoreApplication::instance())
        QMetaObject::invokeMethod(
            application, [dropped = std::move(message)] {}, Qt::QueuedConnection);
}

} // namespace

struct ReplyChannel::Sender::State
{
    std::mutex mutex;                ///< guards all
    ReplyChannel *channel = nullptr; ///< null when it is gone
    std::deque<Message> messages;
};

ReplyChannel::Sender::Sender(ReplyChannel &channel) : m_state(std::make_shared<State>())
{
    m_state->channel = &channel;
}

void ReplyChannel::Sender::post(Message message) const
{
    {
        const std::scoped_lock lock(m_state->mutex);
        if (m_state->channel) {
            m_state->messages.push_back(std::move(message));
            QCoreApplication::postEvent(m_state->channel, new QEvent(kPosted));
            return;
        }
    }
    dropOnMainThread(std::move(message));
}

ReplyChannel::~ReplyChannel()
{
    std::deque<Message> dropped; // destroyed unlocked: a destructor may do anything
    const std::scoped_lock lock(m_sender.m_state->mutex);
    m_sender.m_state->channel = nullptr;
    m_sender.m_state->messages.swap(dropped);
}

/// The lock hands over all that the other thread has written, the event included.
bool ReplyChannel::event(QEvent *event)
{
    Message message;
    {
        const std::scoped_lock lock(m_sender.m_state->mutex);
        std::deque<Message> &messages = m_sender.m_state->messages;
        if (event->type() == kPosted && !messages.empty()) {
            message = std::move(messages.front());
            messages.pop_front();
        }
    }
    if (!message)
        return QObject::event(event);
    message(); // may destroy the channel
    return true;
}
