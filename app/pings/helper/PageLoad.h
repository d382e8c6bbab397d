#pragma once

#include <QObject>
#include <QTimer>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineUrlRequestInterceptor>
#include <functional>

/// Tells of every request that a page makes.
class RequestWatcher final : public QWebEngineUrlRequestInterceptor
{
public:
    explicit RequestWatcher(std::function<void()> seen) : m_seen(std::move(seen)) {}
    void interceptRequest(QWebEngineUrlRequestInfo &) override { m_seen(); }

private:
    std::function<void()> m_seen;
};

/// Loads one page with its scripts, in a browser view that is never shown and remembers nothing.
/// Main thread only; made after the application and destroyed before it.
class PageLoad final : public QObject
{
    Q_OBJECT

public:
    PageLoad();

    void load(const QUrl &url);

Q_SIGNALS:
    /// The page is loaded, and for a short while its scripts have asked for nothing more.
    void finished(bool wasLoaded);

private:
    void settle(bool wasLoaded);

    bool m_wasLoaded = false;
    QTimer m_quiet;
    QTimer m_patience;
    // In this order, so that the page is destroyed first, and the object that the profile calls is
    // destroyed last.
    RequestWatcher m_watcher;
    QWebEngineProfile m_profile; ///< without a name: off the record
    QWebEnginePage m_page;
};
