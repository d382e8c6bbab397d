#pragma once

#include "platform/threads/ReplyChannel.h"

#include <QObject>
#include <functional>
#include <memory>
#include <stop_token>

/// Does one piece of work at a time beside its owner's thread, of which only the latest counts: a
/// new one takes the place of the one that waits, and tells the one under way to stop. Owned and
/// called on one thread, which runs an event loop.
class LatestJob final : public QObject
{
    Q_OBJECT

public:
    /// Runs on the owner's thread, unless something newer was asked for, or this was destroyed,
    /// meanwhile.
    using Answer = std::function<void()>;
    /// Runs on a thread of its own, and should end soon after its token says so. It may hang for
    /// good and holds up no end of the program: it outlives its owner then, and so may touch only
    /// what it has in itself and what lives as long as the program; no more than its answer uses
    /// the owner. It changes none of the user's files.
    using Work = std::function<Answer(const std::stop_token &)>;

    explicit LatestJob(QObject *parent = nullptr);
    /// Stops, and waits for nothing.
    ~LatestJob() override;

    void run(Work work);
    /// Nothing that was asked for is answered any more. Returns at once.
    void stop();

private:
    struct Desk;

    void answer(quint64 number, const Answer &answer) const;

    quint64 m_latest = 0;
    std::shared_ptr<Desk> m_desk; ///< shared with the thread that works
    ReplyChannel m_channel;
};
