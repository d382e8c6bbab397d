#include "prefs/tutorial/web/WebTutorialEngine.h"

#include "prefs/tutorial/web/PageView.h"

#include <QQuickWindow>
#include <QWebEngineProfile>
#include <QtWebEngineQuick>

namespace {

/// What the page's style sheet looks for.
const QString kStillFragment = QStringLiteral("still");

const QString kBackend = QStringLiteral("software");

/// Names the X11 display's way to OpenGL.
constexpr char kOpenGl[] = "QT_XCB_GL_INTEGRATION";

/// Makes what the engine shares with the program: an OpenGL context, without which it crashes at
/// its start. It need not be valid, because the page is drawn in software. The drivers for a valid
/// one would take the memory and the time of the rest of the program together, so the display is
/// told that there are none. Nothing else of the program uses OpenGL.
void startEngine()
{
    const bool isChosen = qEnvironmentVariableIsSet(kOpenGl);
    if (!isChosen)
        qputenv(kOpenGl, "none");
    QtWebEngineQuick::initialize();
    if (!isChosen)
        qunsetenv(kOpenGl); // programs that are started later would inherit it
    if (QQuickWindow::sceneGraphBackend() != kBackend)
        QQuickWindow::setSceneGraphBackend(kBackend);
}

} // namespace

WebTutorialEngine::WebTutorialEngine() = default;
WebTutorialEngine::~WebTutorialEngine() = default;

QWidget *WebTutorialEngine::makeView(const QUrl &page, TutorialMotion motion,
                                     std::function<void(bool)> ended, QWidget *parent)
{
    if (!m_profile) {
        startEngine();
        m_profile = std::make_unique<QWebEngineProfile>(); // without a name: off the record
        m_profile->setUrlRequestInterceptor(new ResourcesOnly(m_profile.get()));
    }
    QUrl url = page;
    if (motion == TutorialMotion::Still)
        url.setFragment(kStillFragment);
    return new PageView(url, *m_profile, ended, parent);
}

void WebTutorialEngine::shutDown()
{
    m_profile.reset();
}
