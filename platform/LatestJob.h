#pragma once

#include <QObject>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

/// One thread that does one piece of work at a time, of which only the latest counts: a new one
/// takes the place of the one that waits, and tells the one under way to stop. Owned and called on
/// one thread, which runs an event loop.
class LatestJob final : public QObject
{
    Q_OBJECT

public:
    /// Runs on the owner's thread, unless something newer was asked for meanwhile.
    using Answer = std::function<void()>;
    /// Runs on the thread of the jobs, and should end soon after its token says so.
    using Work = std::function<Answer(const std::stop_token &)>;

    explicit LatestJob(QObject *parent = nullptr);
    /// Waits for the work under way to heed the stop.
    ~LatestJob() override;

    void run(Work work);
    /// Nothing that was asked for is answered any more. Returns at once.
    void stop();

private:
    void serve(const std::stop_token &end);
    void answer(quint64 number, const Answer &answer);

    quint64 m_latest = 0; ///< the owner's thread alone
    std::mutex m_mutex;   ///< guards the three below
    Work m_waiting;
    quint64 m_number = 0;
    std::stop_source m_stop;
    std::condition_variable_any m_arrived;
    std::jthread m_thread; ///< last: it ends before what it uses
};
