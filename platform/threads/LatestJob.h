#pragma once

#include "platform/threads/BackgroundQueue.h"

/// Does one piece of work at a time of which only the latest counts. Owned and called on one
/// thread, which runs an event loop.
class LatestJob final
{
public:
    using Answer = BackgroundReply;
    using Work = std::function<Answer(const std::stop_token &)>;

    void run(Work work) { m_queue.run(std::move(work)); }
    /// Nothing that was asked for is answered any more. Returns at once.
    void stop() { m_queue.stop(); }

private:
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_queue;
};
