#include "prefs/RoundedFrame.h"

#include <QPainter>

namespace {

constexpr double kCornerRadius = 6;

} // namespace

void RoundedFrame::setFillColor(const QColor &color)
{
    m_fillColor = color;
    update();
}

void RoundedFrame::setLineColor(const QColor &color)
{
    m_lineColor = color;
    update();
}

void RoundedFrame::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(m_lineColor);
    painter.setBrush(m_fillColor);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius,
                            kCornerRadius);
}
