#include "prefs/window/ColorWindowFrameView.h"

#include <QPaintEvent>
#include <QPainter>

namespace {

constexpr double kCornerRadius = 5;
constexpr float kWhiteAlpha = 0.95F;
// Without a shadow from the desktop, white on white would have no edge.
constexpr QColor kEdgeColour(0, 0, 0, 40);
constexpr QColor kHardEdgeColour(176, 180, 186);

} // namespace

ColorWindowFrameView::ColorWindowFrameView(QWidget *parent) : QWidget(parent)
{
}

void ColorWindowFrameView::setCorners(FrameCorners corners)
{
    m_corners = corners;
    update();
}

void ColorWindowFrameView::setIsBlended(bool isBlended)
{
    m_isBlended = isBlended;
    update();
}

QPainterPath ColorWindowFrameView::shape() const
{
    const double radius = m_corners == FrameCorners::Round ? kCornerRadius : 0;
    QPainterPath path;
    path.addRoundedRect(rect(), radius, radius);
    return path;
}

void ColorWindowFrameView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    // Where nothing is blended, pixels that lie only half inside the shape would be half black.
    painter.fillRect(event->rect(), m_isBlended ? Qt::transparent : Qt::white);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor white(Qt::white);
    white.setAlphaF(m_isBlended ? kWhiteAlpha : 1);
    painter.fillPath(shape(), white);
    if (m_corners == FrameCorners::Square)
        return;
    painter.setClipPath(shape()); // cuts the line's outer half off
    painter.strokePath(shape(), QPen(m_isBlended ? kEdgeColour : kHardEdgeColour, 2));
}
