#pragma once

#include <QObject>
#include <functional>
#include <memory>

/// Where background threads (see BackgroundThreads.h) leave their answers for an object that may be
/// gone by then. A member of that object, used on its thread, which runs an event loop.
class Mailbox final : public QObject
{
    Q_OBJECT

public:
    using Message = std::function<void()>;

    /// Outlives the box; shared by all copies. Any thread.
    class Address final
    {
    public:
        explicit Address(Mailbox &box);

        /// Runs the message on the box's thread, later, in the order of the posts. Once the box is
        /// gone it is dropped.
        void post(Message message) const;

    private:
        friend class Mailbox;

        struct Door;

        std::shared_ptr<Door> m_door;
    };

    explicit Mailbox(QObject *parent = nullptr) : QObject(parent), m_address(*this) {}
    ~Mailbox() override;

    Address address() const { return m_address; }

protected:
    bool event(QEvent *event) override;

private:
    Address m_address;
};
