#pragma once

#include "platform/threads/BackgroundQueue.h"

/// Asks questions of which only the latest counts, each on a thread of its own, so that one that
/// hangs holds up no later one. Owned and called on one thread, which runs an event loop.
class LatestTask final
{
public:
    using Question = std::function<BackgroundReply(const std::stop_token &)>;

    void ask(Question question) { m_queue.run(std::move(question)); }
    /// Returns at once.
    void stop() { m_queue.stop(); }

private:
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_queue{kThreadForEachTask};
};
