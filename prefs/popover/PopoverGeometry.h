#pragma once

#include <QPainterPath>
#include <QRectF>

/// Where the parts of a message popover's content lie, in points from the content's upper left.
struct PopoverGeometry
{
    QRectF textFrame;   ///< the text field
    QSizeF contentSize; ///< the field with a margin on every side

    /// For a text that was measured as `text`. The field is wider than the text: by nearly 25
    /// points for a long one, by less for a short one.
    static PopoverGeometry forText(QSizeF text);
};

/// Where a popover stands: at which edge of its anchor, and where its arrow points. In the
/// coordinates of the given anchor.
struct PopoverPlacement
{
    Qt::Edge edge = Qt::BottomEdge; ///< the anchor's edge that it stands at
    QRectF body;                    ///< the content's rectangle, on whole points
    QPointF tip;                    ///< the arrow's point

    /// Stands at the preferred edge where the bounds have room for body and arrow, else at the
    /// opposite one, else at one of the other two, else where least is missing; then it is moved
    /// into the bounds. The tip goes with the anchor's middle as far as the body reaches.
    static PopoverPlacement make(const QRectF &anchor, QSize body, const QRectF &bounds,
                                 Qt::Edge preferred);

    /// Body and arrow as one outline.
    QPainterPath outline() const;
};
