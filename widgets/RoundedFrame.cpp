#include "widgets/RoundedFrame.h"

#include <QApplication>
#include <QPainter>

namespace {

constexpr double kCornerRadius = 6;

} // namespace

RoundedFrame::RoundedFrame(QWidget *parent) : QWidget(parent)
{
    connect(qApp, &QApplication::focusChanged, this, [this] { update(); });
}

void RoundedFrame::setShowsFocus(bool showsFocus)
{
    m_showsFocus = showsFocus;
    update();
}

bool RoundedFrame::holdsFocus() const
{
    const QWidget *focus = QApplication::focusWidget();
    return focus && isAncestorOf(focus);
}

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
    painter.setPen(m_showsFocus && holdsFocus() ? palette().color(QPalette::Highlight)
                                                : m_lineColor);
    painter.setBrush(m_fillColor);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius,
                            kCornerRadius);
}
