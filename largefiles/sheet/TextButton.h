#pragma once

#include "widgets/AttributedText.h"

#include <QPushButton>

/// A push button that is its styled title alone, with a background while the pointer is over it or
/// it has the focus. Main thread only.
class TextButton final : public QPushButton
{
    Q_OBJECT

public:
    explicit TextButton(QWidget *parent = nullptr);

    const AttributedText &attributedTitle() const { return m_title; }
    void setAttributedTitle(const AttributedText &title);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    /// Enter presses the button that has the focus, whatever the default is: a user who has gone to
    /// "Cancel" means it.
    void keyPressEvent(QKeyEvent *event) override;

private:
    AttributedText m_title;
};
