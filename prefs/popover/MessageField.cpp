#include "prefs/popover/MessageField.h"

#include <QPainter>
#include <cmath>

MessageField::MessageField(const AttributedText &text, double maxWidth, QWidget *parent)
    : QLabel(parent), m_block(text, maxWidth)
{
    setTextFormat(Qt::PlainText);
    setText(text.string());
}

void MessageField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_block.paint(painter, {std::round((width() - m_block.size().width()) / 2), 0});
}
