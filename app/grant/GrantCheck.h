#pragma once

#include "app/grant/ResourceManager.h"
#include "platform/threads/BackgroundQueue.h"

/// Finds out, off the main thread, whether the granted home folder can be used: its disk may be a
/// server that does not answer. Owned by the object that asks; main thread only.
class GrantCheck final : public QObject
{
    Q_OBJECT

public:
    /// The reason why the folder cannot be used; nothing when it can. If it can, ResourceManager's
    /// first use waits for no disk.
    using Answer = std::function<void(std::optional<GrantFailure>)>;

    /// Answers from the event loop. The answer is about the grant that is stored at that moment,
    /// and comes from a look that began after the question. When a second question comes before the
    /// answer, only the second one is answered.
    void ask(Answer answer);
    /// Drops the question: it gets no answer any more.
    void drop() { m_answer = {}; }
    /// Whether a look waits for the disk, even when its answer is no longer wanted.
    bool isLooking() const { return m_isLooking; }

private:
    void look();
    void finish(std::optional<GrantFailure> failure);

    Answer m_answer;
    bool m_isLooking = false;
    bool m_isOutdated = false;         ///< the look under way began before the question
    std::optional<QByteArray> m_grant; ///< the grant that the look is about
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_checks{kThreadForEachTask};
};
