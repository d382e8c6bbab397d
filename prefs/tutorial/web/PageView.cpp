#include "prefs/tutorial/web/PageView.h"

#include <QApplication>
#include <QChildEvent>
#include <QKeyEvent>
#include <QTimer>
#include <QWebEngineSettings>

namespace {

bool isResource(const QUrl &url)
{
    return url.scheme() == QStringLiteral("qrc");
}

bool endsSheet(const QEvent &event)
{
    if (event.type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<const QKeyEvent &>(event).key();
    return key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

void ResourcesOnly::interceptRequest(QWebEngineUrlRequestInfo &info)
{
    info.block(!isResource(info.requestUrl()));
}

LocalPage::LocalPage(QUrl url, QWebEngineProfile &profile, QObject *parent)
    : QWebEnginePage(&profile, parent), m_url(std::move(url))
{
    setAudioMuted(true);
    setBackgroundColor(Qt::white);
    using Settings = QWebEngineSettings;
    for (const auto attribute :
         {Settings::JavascriptEnabled, Settings::JavascriptCanOpenWindows, Settings::PluginsEnabled,
          Settings::LocalStorageEnabled, Settings::ErrorPageEnabled, Settings::AutoLoadIconsForPage,
          Settings::LocalContentCanAccessRemoteUrls, Settings::FullScreenSupportEnabled,
          Settings::DnsPrefetchEnabled, Settings::WebGLEnabled, Settings::PdfViewerEnabled})
        settings()->setAttribute(attribute, false);
}

bool LocalPage::acceptNavigationRequest(const QUrl &url, NavigationType, bool)
{
    return url == m_url && isResource(url);
}

PageView::PageView(const QUrl &url, QWebEngineProfile &profile,
                   const std::function<void(bool)> &ended, QWidget *parent)
    : QWebEngineView(parent)
{
    setContextMenuPolicy(Qt::NoContextMenu);
    setPage(new LocalPage(url, profile, this));
    setAcceptDrops(false);
    connect(page(), &QWebEnginePage::loadFinished, this, ended);
    connect(page(), &QWebEnginePage::renderProcessTerminated, this, [this, ended] {
        if (page()->lifecycleState() != QWebEnginePage::LifecycleState::Discarded)
            ended(false);
    });
    load(url);
}

/// The engine's own widget, which has the keys, comes and goes with the page's process.
void PageView::childEvent(QChildEvent *event)
{
    QWebEngineView::childEvent(event);
    if (event->added())
        event->child()->installEventFilter(this);
}

bool PageView::eventFilter(QObject *watched, QEvent *event)
{
    if (!endsSheet(*event) || !parentWidget())
        return QWebEngineView::eventFilter(watched, event);
    QCoreApplication::sendEvent(parentWidget(), event);
    return true;
}

void PageView::hideEvent(QHideEvent *event)
{
    QWebEngineView::hideEvent(event);
    // Not during the event: the page still believes that it is visible until it has been told.
    QTimer::singleShot(0, this, [this] {
        if (!isVisible())
            page()->setLifecycleState(QWebEnginePage::LifecycleState::Discarded);
    });
}
