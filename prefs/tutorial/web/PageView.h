#pragma once

#include <QWebEnginePage>
#include <QWebEngineUrlRequestInterceptor>
#include <QWebEngineView>
#include <functional>

/// Lets a page ask for the program's own resources and for nothing else.
class ResourcesOnly final : public QWebEngineUrlRequestInterceptor
{
public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;
    void interceptRequest(QWebEngineUrlRequestInfo &info) override;
};

/// A page that leads nowhere: no scripts, no windows, no other address than its own.
class LocalPage final : public QWebEnginePage
{
public:
    LocalPage(QUrl url, QWebEngineProfile &profile, QObject *parent);

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;

private:
    QUrl m_url;
};

/// Shows one page of the resources. While it is hidden, it has no process that renders it. The keys
/// that end a sheet go on to the widgets around it.
class PageView final : public QWebEngineView
{
public:
    /// `ended` as of TutorialEngine::makeView().
    PageView(const QUrl &url, QWebEngineProfile &profile, const std::function<void(bool)> &ended,
             QWidget *parent);

protected:
    void childEvent(QChildEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
};
