#pragma once

#include <QLocalSocket>
#include <QTimer>
#include <chrono>

class InstanceLock;

/// How a second start ends.
enum class HandOverResult {
    Answered,  ///< the first program shows its window
    Succeeded, ///< the first program has ended meanwhile, and the lock is taken: this is the first
    Unanswered ///< the first program holds the lock and says nothing
};

/// Asks the program that runs already to show its window. While it cannot be reached it may be
/// starting or ending, so this tries again until the patience is over. Owned by the start-up; main
/// thread only, and it needs the event loop.
class HandOver final : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::seconds kPatience{10};

    struct Call
    {
        QString socket;
        QByteArray activation; ///< the desktop's permission to come to the front; may be empty
        std::chrono::milliseconds patience = kPatience;
    };

    /// The lock must outlive this.
    HandOver(InstanceLock &lock, Call call, QObject *parent = nullptr);

    /// finished() follows once.
    void start();

Q_SIGNALS:
    void finished(HandOverResult result);

private:
    void attempt();
    void send();
    void read();
    void finish(HandOverResult result);

    InstanceLock &m_lock;
    Call m_call;
    bool m_isFinished = false;
    QTimer m_retry;
    QTimer m_patience;
    QLocalSocket m_socket; ///< last: it may start the timer while it ends
};
