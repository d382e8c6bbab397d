#pragma once

#include <QMutex>
#include <QStringList>

/// Records what the program logs, instead of showing it, as long as this object lives. Only one may
/// live at a time. Make it and ask it on the main thread; any thread may log.
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
