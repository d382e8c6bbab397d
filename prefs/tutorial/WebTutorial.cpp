#include "prefs/tutorial/WebTutorial.h"

#include "app/settings/SettingsFile.h"
#include "app/settings/SettingsKeys.h"
#include "platform/base/Log.h"
#include "platform/look/ViewAlpha.h"
#include "platform/system/HostSystemCalls.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QPluginLoader>
#include <QTimer>

namespace {

/// Loads the plugin with the engine; null when it cannot be loaded. It is never unloaded: the
/// engine does not survive that.
QObject *loadedPlugin(const QString &file)
{
    // The engine warns that it comes after the application object. The plugin knows that, and makes
    // at once what the engine misses.
    QLoggingCategory &toolkit = *QLoggingCategory::defaultCategory();
    const bool wasEnabled = toolkit.isWarningEnabled();
    toolkit.setEnabled(QtWarningMsg, false);
    QObject *const plugin = QPluginLoader(file).instance();
    toolkit.setEnabled(QtWarningMsg, wasEnabled);
    return plugin;
}

} // namespace

WebTutorialFiles WebTutorialFiles::ofTheProgramIn(const QString &folder)
{
    for (const QString &place : {folder, folder + QStringLiteral("/../lib/vantor")}) {
        // The loader knows how libraries are named on this system.
        const QString plugin = QPluginLoader(place + QStringLiteral("/vantor-tutorial")).fileName();
        if (!plugin.isEmpty())
            return {.plugin = plugin, .probe = place + QStringLiteral("/vantor-tutorial-probe")};
    }
    return {};
}

WebTutorial::WebTutorial(WebTutorialFiles files) : m_files(std::move(files))
{
    m_probe.setStandardInputFile(QProcess::nullDevice());
    m_probe.setStandardOutputFile(QProcess::nullDevice());
    m_probe.setStandardErrorFile(QProcess::nullDevice());
    connect(&m_probe, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            endProbe(false, "its probe is missing");
    });
    connect(&m_probe, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
        const bool isUsable = status == QProcess::NormalExit && code == 0;
        endProbe(isUsable, "it does not start");
    });
    QAccessible::installActivationObserver(this);
}

WebTutorial::~WebTutorial()
{
    QAccessible::removeActivationObserver(this);
    m_probe.disconnect(this);
    m_probe.kill();
    m_probe.waitForFinished(); // waits only until the killed process is taken down
    for (const QPointer<QWidget> &view : m_views)
        delete view;
    if (m_engine)
        m_engine->shutDown();
}

void WebTutorial::accessibilityActiveChanged(bool isActive)
{
    m_hasScreenReader = isActive;
    if (isActive)
        Q_EMIT screenReaderCame();
}

bool WebTutorial::mayBeShown(const QString &settingsFolder)
{
    const QJsonObject settings = SettingsFile(settingsFolder, hostSystemCalls()).peek().values;
    return !settings.value(VNTHideDemoWindowString).toBool();
}

void WebTutorial::probe()
{
    if (m_files.plugin.isEmpty())
        return endProbe(false, "it is not installed");
    QTimer::singleShot(m_files.limit, &m_probe, &QProcess::kill);
    m_probe.start(m_files.probe, {m_files.plugin, QString::number(m_files.limit.count()),
                                  QStringLiteral("-platform"), QGuiApplication::platformName()});
}

void WebTutorial::endProbe(bool isUsable, const char *reason)
{
    m_isUsable = isUsable;
    if (!isUsable)
        qCInfo(logVantor, "The tutorial is shown without the web engine: %s.", reason);
    Q_EMIT probed(isUsable);
}

TutorialEngine *WebTutorial::engine()
{
    if (!m_engine && m_isUsable) {
        m_engine = qobject_cast<TutorialEngine *>(loadedPlugin(m_files.plugin));
        if (!m_engine)
            endProbe(false, "it cannot be loaded");
    }
    return m_engine;
}

QWidget *WebTutorial::makeWebView(const QUrl &page, std::function<void(bool)> ended,
                                  QWidget &parent)
{
    if (m_hasScreenReader || !m_isUsable || !engine())
        return nullptr;
    const bool moves = animationDuration(parent, std::chrono::seconds(1)).count() > 0;
    const auto motion = moves ? TutorialMotion::Moving : TutorialMotion::Still;
    m_views.append(m_engine->makeView(page, motion, std::move(ended), &parent));
    return m_views.constLast();
}
