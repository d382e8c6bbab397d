#pragma once

#include "platform/instance/HandOver.h"
#include "platform/instance/InstanceLock.h"
#include "platform/instance/InstancePlaces.h"
#include "platform/instance/InstanceServer.h"

#include <memory>
#include <optional>

/// Sees to it that one program runs with these settings. Two would not know what the other one's
/// user has just excluded. A second start has the first show its window, and ends.
///
/// Made by main() before the application object, and outlives all else: the lock is held until the
/// process ends. Main thread only.
class OneInstance final : public QObject
{
    Q_OBJECT

public:
    explicit OneInstance(const QString &settingsFolder,
                         std::chrono::milliseconds patience = HandOver::kPatience);

    /// Returns nothing when the program shall run, and answers second starts from then on.
    /// Otherwise the exit code with which it has to end: it has handed over, or has told the user
    /// that the other one does not answer. Runs the event loop meanwhile; if somebody else ends
    /// that, the program has to end, too.
    std::optional<int> settle();

    /// Why it is unknown whether another one runs, as a text for people; empty when it is known.
    QString doubt() const;

    /// Answers no second start any more: this program ends and another one follows it, which waits
    /// until the lock is free.
    void close();
    /// Answers again.
    void listen();

Q_SIGNALS:
    /// The user has started the program once more; see InstanceServer.
    void called(const QByteArray &activation);

private:
    std::optional<HandOverResult> handOver();
    static void tellOfSilence();

    const QString m_settingsFolder;
    const std::chrono::milliseconds m_patience;
    const QByteArray m_activation;
    const InstancePlaces m_places;
    InstanceLock m_lock;
    InstanceRole m_role;
    std::unique_ptr<InstanceServer> m_server;
};
