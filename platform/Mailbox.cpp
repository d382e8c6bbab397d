#include "platform/Mailbox.h"

#include <mutex>

struct Mailbox::Address::Door
{
    std::mutex mutex;
    Mailbox *box; ///< null when it is gone
};

Mailbox::Address::Address(Mailbox &box) : m_door(std::make_shared<Door>())
{
    m_door->box = &box;
}

void Mailbox::Address::post(Message message) const
{
    const std::scoped_lock lock(m_door->mutex);
    if (m_door->box)
        QMetaObject::invokeMethod(m_door->box, std::move(message), Qt::QueuedConnection);
}

Mailbox::~Mailbox()
{
    const std::scoped_lock lock(m_address.m_door->mutex);
    m_address.m_door->box = nullptr;
}
