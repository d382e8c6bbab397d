#include "prefs/popover/PopoverFrameView.h"

#include "prefs/popover/COICOPopoverView.h"

#include <QPainter>

namespace {

constexpr int kShadowReach = 16;
constexpr int kShadowStrokes = 14;
constexpr double kShadowDrop = 3;
constexpr QColor kShadowColour(0, 0, 0, 3);
constexpr int kEdge = 1;
constexpr QColor kEdgeColour(0, 0, 0, 30);
constexpr QColor kLoneEdgeColour(176, 180, 186); // where no shadow helps

/// Many faint strokes of growing width. Fewer of them reach further out, so the shadow is dark at
/// the outline and gone at the reach.
void paintShadow(QPainter &painter, const QPainterPath &outline)
{
    painter.save();
    painter.translate(0, kShadowDrop);
    for (int stroke = 1; stroke <= kShadowStrokes; ++stroke) {
        const double part = static_cast<double>(stroke) / kShadowStrokes;
        const double width = 2 * (kShadowReach - kShadowDrop) * part * part;
        painter.strokePath(outline,
                           QPen(kShadowColour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    painter.restore();
}

} // namespace

PopoverFrameView::PopoverFrameView(std::unique_ptr<COICOPopoverView> content, QWidget *parent)
    : QWidget(parent), m_content(content.release())
{
    m_content->setParent(this);
}

QPoint PopoverFrameView::place(const PopoverPlacement &placement)
{
    const int margin = m_hasShadow ? kShadowReach : kEdge;
    const QRect frame = placement.outline().boundingRect().toAlignedRect().adjusted(
        -margin, -margin, margin, margin);
    m_placement = placement;
    m_placement.body.translate(-frame.topLeft());
    m_placement.tip -= frame.topLeft();
    resize(frame.size());
    m_content->move(m_placement.body.topLeft().toPoint());
    return frame.topLeft();
}

QPainterPath PopoverFrameView::shape() const
{
    QPainterPathStroker stroker;
    stroker.setWidth(2 * kEdge);
    const QPainterPath outline = m_placement.outline();
    return outline.united(stroker.createStroke(outline));
}

void PopoverFrameView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath outline = m_placement.outline();
    if (m_hasShadow)
        paintShadow(painter, outline);
    painter.strokePath(outline, QPen(m_hasShadow ? kEdgeColour : kLoneEdgeColour, 2 * kEdge));
    painter.fillPath(outline, m_content->fill(m_placement.body));
}
