#include "prefs/tutorial/web/WebTutorialEngine.h"

#include "prefs/tutorial/web/PageView.h"

#include <QQuickWindow>
#include <QWebEngineProfile>

namespace {

/// What the page's style sheet looks for.
const QString kStillFragment = QStringLiteral("still");

const QString kBackend = QStringLiteral("software");

} // namespace

WebTutorialEngine::WebTutorialEngine() = default;
WebTutorialEngine::~WebTutorialEngine() = default;

QWidget *WebTutorialEngine::makeView(const QUrl &page, TutorialMotion motion,
                                     std::function<void(bool)> ended, QWidget *parent)
{
    if (!m_profile) {
        if (QQuickWindow::sceneGraphBackend() != kBackend)
            QQuickWindow::setSceneGraphBackend(kBackend);
        m_profile = std::make_unique<QWebEngineProfile>(); // without a name: off the record
        m_profile->setUrlRequestInterceptor(new ResourcesOnly(m_profile.get()));
    }
    QUrl url = page;
    if (motion == TutorialMotion::Still)
        url.setFragment(kStillFragment);
    return new PageView(url, *m_profile, std::move(ended), parent);
}

void WebTutorialEngine::shutDown()
{
    m_profile.reset();
}
