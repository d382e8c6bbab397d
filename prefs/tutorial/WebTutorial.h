#pragma once

#include "prefs/tutorial/TutorialEngine.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QObject>
#include <QPointer>
#include <QProcess>
#include <chrono>

/// Where the parts with the web engine are. Either may be missing.
struct WebTutorialFiles
{
    static constexpr std::chrono::seconds kProbeLimit{15};

    QString plugin;                                ///< empty where there is none
    QString probe;                                 ///< vantor-tutorial-probe
    std::chrono::milliseconds limit = kProbeLimit; ///< of the probe's run

    /// The files in the program's folder, where they are built, or else those in ../lib/vantor.
    static WebTutorialFiles
    ofTheProgramIn(const QString &folder = QCoreApplication::applicationDirPath());
};

/// Decides whether the tutorial is shown by the web engine, and loads the engine when it is.
///
/// Where the engine cannot start, it ends its whole process: without a sandbox, without its own
/// files, or with a graphics driver that it does not work with. So this starts the engine only
/// after a small program has started it in the same way, in a process of its own, and has ended
/// well. Until that is known, and when it failed, the views show rich text. They also show rich
/// text for a screen reader: the engine tells a screen reader nothing unless it was started for
/// one.
///
/// Made after the application object and destroyed before it, but after every view. Main thread
/// only.
class WebTutorial final : public QObject, private QAccessible::ActivationObserver
{
    Q_OBJECT

public:
    explicit WebTutorial(WebTutorialFiles files = WebTutorialFiles::ofTheProgramIn());
    ~WebTutorial() override;

    /// Whether the settings in this folder leave the tutorial to be shown.
    static bool mayBeShown(const QString &settingsFolder);

    /// Begins to find out whether the engine starts here; probed() follows. Call it once.
    void probe();

    bool isUsable() const { return m_isUsable; }

    /// The engine's view of a page, as TutorialEngine::makeView(); null when it is not usable.
    QWidget *makeWebView(const QUrl &page, std::function<void(bool isShown)> ended,
                         QWidget &parent);

Q_SIGNALS:
    void probed(bool isUsable);
    void screenReaderCame();

private:
    void accessibilityActiveChanged(bool isActive) override;
    void endProbe(bool isUsable, const char *reason);
    TutorialEngine *engine();

    WebTutorialFiles m_files;
    QProcess m_probe;
    bool m_isUsable = false;
    bool m_hasScreenReader = QAccessible::isActive();
    TutorialEngine *m_engine = nullptr;
    QList<QPointer<QWidget>> m_views;
};
