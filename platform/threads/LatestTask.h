#pragma once

#include "platform/threads/ReplyChannel.h"

#include <QObject>
#include <functional>
#include <stop_token>
#include <thread>
#include <vector>

/// Runs tasks on threads of their own of which only the latest counts: a newer one stops those
/// before it, and nobody waits for those. There are two kinds, work and questions, and they differ
/// in what becomes of them when this is destroyed. Used on one thread, that of its owner, which
/// runs an event loop.
class LatestTask final : public QObject
{
    Q_OBJECT

public:
    /// Runs on the task's own thread, and should end soon after its token says so. The destructor
    /// waits for it: it may use what its owner has.
    using Work = std::function<void(const std::stop_token &)>;
    /// Runs on the owner's thread, unless the task was stopped, or this destroyed, meanwhile.
    using Answer = std::function<void()>;
    /// For what may hang for good: nobody waits for it, so that a dead disk holds up no end of the
    /// program. It outlives its owner then, and so may touch only what it has in itself and what
    /// lives as long as the program; no more than its answer uses the owner. It changes none of the
    /// user's files.
    using Question = std::function<Answer(const std::stop_token &)>;

    explicit LatestTask(QObject *parent = nullptr) : QObject(parent) {}
    /// Stops all tasks; waits for work, not for questions.
    ~LatestTask() override;

    void start(Work work);
    void ask(Question question);
    /// Returns at once.
    void stop();

    /// Those that have not ended yet, stopped ones included.
    std::size_t threadCount() const { return m_threads.size() + m_questions; }

private:
    void join(std::thread::id ended);

    std::vector<std::jthread> m_threads; ///< of work
    std::stop_source m_stop;             ///< of the latest question
    std::size_t m_questions = 0;         ///< not ended yet
    ReplyChannel m_channel;              ///< of the questions
};
