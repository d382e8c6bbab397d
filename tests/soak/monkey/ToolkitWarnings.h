#pragma once

#include <QMutex>
#include <QStringList>

/// Collects the warnings of the toolkit as long as it lives: they tell that the program uses it
/// wrongly. What the program itself logs is dropped, and so is what a window system says that it
/// cannot do. Only one may live at a time. Any thread may log; the rest is the main thread's.
class ToolkitWarnings final
{
public:
    ToolkitWarnings();
    ~ToolkitWarnings();
    ToolkitWarnings(const ToolkitWarnings &) = delete;
    ToolkitWarnings &operator=(const ToolkitWarnings &) = delete;

    /// Those since the last time.
    QStringList take();

private:
    static void hear(QtMsgType type, const QMessageLogContext &context, const QString &message);

    QMutex m_mutex;
    QStringList m_heard;
    QtMessageHandler m_previous = nullptr;
};
