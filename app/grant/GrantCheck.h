#pragma once

#include "app/grant/ResourceManager.h"
#include "platform/threads/BackgroundQueue.h"

/// Finds out beside the main thread whether the home folder that is granted can be used: its disk
/// may be a server that does not answer. Owned by who asks; main thread only.
class GrantCheck final : public QObject
{
    Q_OBJECT

public:
    /// Why not; nothing when it can. Then ResourceManager's first use waits for no disk.
    using Answer = std::function<void(std::optional<GrantFailure>)>;

    /// Answers from the event loop, about the grant that is stored then, by a look that began after
    /// the question. Asked again before the answer, only the later question is answered.
    void ask(Answer answer);
    /// What was asked is answered no more.
    void drop() { m_answer = {}; }
    /// Whether the disk is waited for, for an answer or for none any more.
    bool isLooking() const { return m_isLooking; }

private:
    void look();
    void finish(std::optional<GrantFailure> failure);

    Answer m_answer;
    bool m_isLooking = false;
    bool m_isOutdated = false;         ///< the look under way began before the question
    std::optional<QByteArray> m_grant; ///< that is looked for
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_checks{kThreadForEachTask};
};
