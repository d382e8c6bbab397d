#pragma once

#include <QMutex>
#include <QStringList>

/// Takes down what the program logs, instead of showing it, for as long as this lives. One at a
/// time; made and asked in the main thread, fed from any.
class LogRecorder final
{
public:
    LogRecorder();
    ~LogRecorder();
    LogRecorder(const LogRecorder &) = delete;
    LogRecorder &operator=(const LogRecorder &) = delete;

    /// The lines of Vantor's own category, in order.
    QStringList lines() const;

private:
    static void take(QtMsgType type, const QMessageLogContext &context, const QString &message);

    mutable QMutex m_mutex;
    QStringList m_lines;
    QtMessageHandler m_previous = nullptr;
};
