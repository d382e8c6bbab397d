#include "widgets/ColorView.h"

#include <QPaintEvent>
#include <QPainter>

namespace {

constexpr float kColorlessAlpha = 0.95F;

} // namespace

ColorView::ColorView(QWidget *parent) : QWidget(parent)
{
}

ColorView::ColorView(const QRect &frame, QWidget *parent) : QWidget(parent)
{
    setGeometry(frame);
}

void ColorView::setColor(const QColor &color)
{
    m_color = color;
    update();
}

void ColorView::paintEvent(QPaintEvent *event)
{
    const QColor colorless = QColor::fromRgbF(1, 1, 1, kColorlessAlpha);
    QPainter(this).fillRect(event->rect(), m_color.isValid() ? m_color : colorless);
}
