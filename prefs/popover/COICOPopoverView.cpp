#include "prefs/popover/COICOPopoverView.h"

#include <QPainter>

namespace {

constexpr double kCornerRadius = 5;

} // namespace

COICOPopoverView::COICOPopoverView(QWidget *parent) : QWidget(parent)
{
}

QColor COICOPopoverView::backgroundColour() const
{
    return m_backgroundColour.isValid() ? m_backgroundColour : palette().color(QPalette::Base);
}

void COICOPopoverView::setBackgroundColour(const QColor &colour)
{
    m_backgroundColour = colour;
    update();
}

QBrush COICOPopoverView::fill(const QRectF &body) const
{
    QLinearGradient gradient(body.topLeft(), body.bottomLeft());
    gradient.setColorAt(0, backgroundColour());
    gradient.setColorAt(1, palette().color(QPalette::Base));
    return gradient;
}

void COICOPopoverView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill(rect()));
    painter.drawRoundedRect(rect(), kCornerRadius, kCornerRadius);
}
