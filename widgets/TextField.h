#pragma once

#include "widgets/AttributedText.h"

#include <QLabel>

/// One line of text without border or background, plain or attributed, painted so that it is never
/// cut off: a text that is too wide for the field is drawn smaller. Plain text has the field's
/// font, its palette's WindowText colour and its alignment. Main thread only.
class TextField : public QLabel
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)

public:
    explicit TextField(QWidget *parent = nullptr);

    /// Shows a plain text in the field's own style, whatever was shown before. Call it on the
    /// field's own type: QLabel::setText() knows nothing of the styles.
    void setText(const QString &text);

    /// The text that is shown; a plain text is one run in the field's style.
    AttributedText attributedText() const;
    void setAttributedText(const AttributedText &text);

    QColor textColor() const;
    void setTextColor(const QColor &color);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The text was set, perhaps to the same value.
    void attributedTextChanged();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    AttributedText m_attributedText; ///< empty while the text is plain
};
