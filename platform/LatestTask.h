#pragma once

#include <QObject>
#include <functional>
#include <stop_token>
#include <thread>
#include <vector>

/// Runs tasks on threads of their own of which only the latest counts: a newer one stops those
/// before it. Nobody waits for a stopped task but the destructor. Used on one thread, that of its
/// owner, which runs an event loop.
class LatestTask final : public QObject
{
    Q_OBJECT

public:
    /// Runs on the task's own thread, and should end soon after its token says so.
    using Work = std::function<void(const std::stop_token &)>;
    /// Runs on the owner's thread, unless the task was stopped meanwhile.
    using Answer = std::function<void()>;
    /// Work that answers.
    using Question = std::function<Answer(const std::stop_token &)>;

    explicit LatestTask(QObject *parent = nullptr) : QObject(parent) {}
    /// Stops all tasks and waits for them.
    ~LatestTask() override;

    void start(Work work);
    /// For what may hang: one that does holds up no later one.
    void ask(Question question);
    /// Returns at once.
    void stop();

    /// Those that have not ended yet, stopped ones included.
    std::size_t threadCount() const { return m_threads.size(); }

private:
    void join(std::thread::id ended);

    std::vector<std::jthread> m_threads;
};
