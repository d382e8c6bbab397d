#include "prefs/tutorial/WebTutorialView.h"

#include "platform/base/Log.h"
#include "prefs/tutorial/TextTutorialView.h"
#include "prefs/tutorial/WebTutorial.h"

#include <QVBoxLayout>

WebTutorialView::WebTutorialView(WebTutorial &engine, QWidget *parent)
    : TutorialView(parent), m_engine(engine)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    connect(&m_engine, &WebTutorial::screenReaderCame, this, [this] {
        if (isWeb())
            showText();
    });
}

void WebTutorialView::load(const QUrl &page)
{
    m_page = page;
    delete m_webView;
    m_webView = m_engine.makeWebView(
        page, [this](bool isShown) { takeEnd(isShown); }, *this);
    if (m_webView)
        take(*m_webView);
    else
        takeEnd(false);
}

void WebTutorialView::takeEnd(bool isShown)
{
    if (!isShown) {
        if (isWeb())
            qCInfo(logVantor, "The web engine gave the tutorial up.");
        showText();
    }
    Q_EMIT loaded();
}

void WebTutorialView::showText()
{
    const bool hadFocus = m_webView != nullptr && m_webView->isAncestorOf(window()->focusWidget());
    if (m_webView) {
        m_webView->hide();
        m_webView->deleteLater(); // it may be the caller
        m_webView.clear();
    }
    if (!m_textView) {
        m_textView = new TextTutorialView(this);
        take(*m_textView);
    }
    m_textView->load(m_page);
    if (hadFocus)
        m_textView->setFocus(Qt::OtherFocusReason);
}

void WebTutorialView::take(QWidget &view)
{
    layout()->addWidget(&view);
    view.setAccessibleName(tr("Tutorial"));
    view.show();
    setFocusProxy(&view);
}
