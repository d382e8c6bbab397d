#pragma once

#include <QObject>
#include <functional>
#include <memory>

/// Takes the replies of background threads to an object that may be gone by then. A member of that
/// object, used on its thread, which runs an event loop.
class ReplyChannel final : public QObject
{
    Q_OBJECT

public:
    using Message = std::function<void()>;

    /// A weak reference to a channel, shared by all copies; outlives it. Any thread.
    class Sender final
    {
    public:
        explicit Sender(ReplyChannel &channel);

        /// Runs the message on the channel's thread, later, in the order of the posts. Once the
        /// channel is gone the message is dropped. What the message holds is then destroyed on the
        /// main thread, because it may hold the last reference to an object of that thread.
        void post(Message message) const;

    private:
        friend class ReplyChannel;

        struct State;

        std::shared_ptr<State> m_state;
    };

    explicit ReplyChannel(QObject *parent = nullptr) : QObject(parent), m_sender(*this) {}
    ~ReplyChannel() override;

    Sender sender() const { return m_sender; }

protected:
    bool event(QEvent *event) override;

private:
    Sender m_sender;
};
