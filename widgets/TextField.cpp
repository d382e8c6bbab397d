#include "widgets/TextField.h"

#include <QPainter>
#include <cmath>

TextField::TextField(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void TextField::setText(const QString &text)
{
    m_attributedText = {};
    QLabel::setText(text);
    Q_EMIT attributedTextChanged();
}

AttributedText TextField::attributedText() const
{
    if (m_attributedText.firstRun())
        return m_attributedText;
    return {TextRun{text(), font(), textColor(), alignment()}};
}

void TextField::setAttributedText(const AttributedText &text)
{
    m_attributedText = text;
    QLabel::setText(text.string());
    updateGeometry();
    update();
    Q_EMIT attributedTextChanged();
}

QColor TextField::textColor() const
{
    // The caption of a disabled button must be as legible as any other.
    return palette().color(QPalette::Active, QPalette::WindowText);
}

void TextField::setTextColor(const QColor &color)
{
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, color);
    setPalette(colors);
}

QSize TextField::sizeHint() const
{
    const QSizeF size = attributedText().size();
    return QSizeF(std::ceil(size.width()), std::ceil(std::max(size.height(), lineHeight(font()))))
        .toSize()
        .grownBy(contentsMargins());
}

QSize TextField::minimumSizeHint() const
{
    // Narrower than this, the letters would be drawn too small to read.
    const QSize size = sizeHint();
    return {size.width() / 2, size.height()};
}

void TextField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    attributedText().draw(painter, contentsRect());
}
