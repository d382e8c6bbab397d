#include "platform/threads/Mailbox.h"

#include <QCoreApplication>
#include <QEvent>
#include <deque>
#include <mutex>
#include <utility>

namespace {

constexpr QEvent::Type kPosted = QEvent::User;

} // namespace

struct Mailbox::Address::Door
{
    std::mutex mutex;       ///< guards all
    Mailbox *box = nullptr; ///< null when it is gone
    std::deque<Message> messages;
};

Mailbox::Address::Address(Mailbox &box) : m_door(std::make_shared<Door>())
{
    m_door->box = &box;
}

void Mailbox::Address::post(Message message) const
{
    const std::scoped_lock lock(m_door->mutex);
    if (!m_door->box)
        return;
    m_door->messages.push_back(std::move(message));
    QCoreApplication::postEvent(m_door->box, new QEvent(kPosted));
}

Mailbox::~Mailbox()
{
    std::deque<Message> dropped; // unlocked: what they hold may do anything when it goes
    const std::scoped_lock lock(m_address.m_door->mutex);
    m_address.m_door->box = nullptr;
    m_address.m_door->messages.swap(dropped);
}

/// The lock hands over all that the other thread has written, the event included.
bool Mailbox::event(QEvent *event)
{
    Message message;
    {
        const std::scoped_lock lock(m_address.m_door->mutex);
        std::deque<Message> &messages = m_address.m_door->messages;
        if (event->type() == kPosted && !messages.empty()) {
            message = std::move(messages.front());
            messages.pop_front();
        }
    }
    if (!message)
        return QObject::event(event);
    message(); // which may be the end of the box
    return true;
}
