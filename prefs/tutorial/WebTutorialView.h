#pragma once

#include "prefs/tutorial/TutorialView.h"

#include <QPointer>

class WebTutorial;

/// Shows the tutorial with the web engine where that is usable. Shows it as rich text where the
/// engine is not usable or fails meanwhile, and for screen readers. Main thread.
class WebTutorialView final : public TutorialView
{
    Q_OBJECT

public:
    /// `engine` must outlive this.
    explicit WebTutorialView(WebTutorial &engine, QWidget *parent = nullptr);

    void load(const QUrl &page) override;

    /// Whether the engine shows the page.
    bool isWeb() const { return m_webView != nullptr; }

Q_SIGNALS:
    /// The engine has the page, or rich text took its place.
    void loaded();

private:
    void takeEnd(bool isShown);
    void showText();
    void take(QWidget &view);

    WebTutorial &m_engine;
    QUrl m_page;
    QPointer<QWidget> m_webView;
    QPointer<TutorialView> m_textView;
};
