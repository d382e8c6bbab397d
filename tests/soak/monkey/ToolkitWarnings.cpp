#include "tests/soak/monkey/ToolkitWarnings.h"

#include <QLoggingCategory>
#include <utility>

namespace {

ToolkitWarnings *s_current = nullptr;

bool isOfTheToolkit(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const bool isWarning = type == QtWarningMsg || type == QtCriticalMsg;
    const bool isOurs = QLatin1StringView(context.category) == QLatin1StringView("vantor");
    return isWarning && !isOurs &&
           !message.startsWith(QStringLiteral("This plugin does not support"));
}

} // namespace

ToolkitWarnings::ToolkitWarnings()
{
    s_current = this;
    m_previous = qInstallMessageHandler(&ToolkitWarnings::hear);
}

ToolkitWarnings::~ToolkitWarnings()
{
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

QStringList ToolkitWarnings::take()
{
    const QMutexLocker lock(&m_mutex);
    return std::exchange(m_heard, {});
}

void ToolkitWarnings::hear(QtMsgType type, const QMessageLogContext &context,
                           const QString &message)
{
    if (type == QtFatalMsg)
        s_current->m_previous(type, context, message);
    if (!isOfTheToolkit(type, context, message))
        return;
    const QMutexLocker lock(&s_current->m_mutex);
    s_current->m_heard.append(message);
}
