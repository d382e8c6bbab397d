#pragma once

#include "platform/system/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>

/// Tells when someone outside asks the program to end: by one of the signals SIGTERM, SIGINT and
/// SIGHUP, or because the session of the desktop ends (QEvent::Quit). Whoever is told ends the
/// program in order. The same SIGTERM or SIGINT a second time ends the process at once. A second
/// SIGHUP does not: a terminal that closes may send it twice. A signal that was ignored when the
/// program was started, as "nohup" does, stays ignored.
///
/// One in the program, made by main() after the application object. Main thread only; its event
/// loop delivers the requests.
class EndRequests final : public QObject
{
    Q_OBJECT

public:
    EndRequests();
    /// The signals have their usual effect again.
    ~EndRequests() override;

    /// The signal that asked for the end; 0 while none has.
    int signal() const { return m_signal; }

Q_SIGNALS:
    void endAsked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void takeSignals();

    FileDescriptor m_readEnd;
    FileDescriptor m_writeEnd;
    std::unique_ptr<QSocketNotifier> m_notifier;
    int m_signal = 0;
};
