#pragma once

#include "prefs/tutorial/TutorialView.h"

class QTextBrowser;

/// The tutorial as the toolkit's rich text: no web engine, read by screen readers, scrolled by
/// keyboard. Its pictures are drawings of the resources, sharp at any scale. Main thread.
class TextTutorialView final : public TutorialView
{
    Q_OBJECT

public:
    explicit TextTutorialView(QWidget *parent = nullptr);

    void load(const QUrl &page) override;

    /// What a reader gets.
    QString plainText() const;

private:
    QTextBrowser *m_browser;
};
