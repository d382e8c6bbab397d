#include "tests/support/run/LogRecorder.h"

#include <QLoggingCategory>

namespace {

LogRecorder *s_current = nullptr;

} // namespace

LogRecorder::LogRecorder()
{
    s_current = this;
    m_previous = qInstallMessageHandler(&LogRecorder::take);
}

LogRecorder::~LogRecorder()
{
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

QStringList LogRecorder::lines() const
{
    const QMutexLocker lock(&m_mutex);
    return m_lines;
}

void LogRecorder::take(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    LogRecorder &recorder = *s_current;
    if (QLatin1StringView(context.category) != QLatin1StringView("vantor")) {
        recorder.m_previous(type, context, message);
        return;
    }
    const QMutexLocker lock(&recorder.m_mutex);
    recorder.m_lines.append(message);
}
