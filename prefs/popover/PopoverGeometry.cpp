#include "prefs/popover/PopoverGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double kMargin = 15;
constexpr double kWidening = 25;
constexpr double kArrowHeight = 9;
constexpr double kArrowHalfWidth = 11;
constexpr double kArrowRounding = 2;
constexpr double kCornerRadius = 5;

/// The step away from the anchor.
QPointF outward(Qt::Edge edge)
{
    switch (edge) {
    case Qt::TopEdge:
        return {0, -1};
    case Qt::BottomEdge:
        return {0, 1};
    case Qt::LeftEdge:
        return {-1, 0};
    case Qt::RightEdge:
        return {1, 0};
    }
    Q_UNREACHABLE();
}

Qt::Edge opposite(Qt::Edge edge)
{
    switch (edge) {
    case Qt::TopEdge:
        return Qt::BottomEdge;
    case Qt::BottomEdge:
        return Qt::TopEdge;
    case Qt::LeftEdge:
        return Qt::RightEdge;
    case Qt::RightEdge:
        return Qt::LeftEdge;
    }
    Q_UNREACHABLE();
}

/// Half a size, taken along a direction of one axis.
double halfAlong(QSizeF size, QPointF direction)
{
    return std::abs(direction.x()) * size.width() / 2 + std::abs(direction.y()) * size.height() / 2;
}

/// How far a rectangle reaches in a direction.
double reach(const QRectF &rect, QPointF direction)
{
    return QPointF::dotProduct(rect.center(), direction) + halfAlong(rect.size(), direction);
}

Qt::Edge chosenEdge(const QRectF &anchor, QSizeF body, const QRectF &bounds, Qt::Edge preferred)
{
    const bool isVertical = outward(preferred).x() == 0;
    const std::array edges{preferred, opposite(preferred),
                           isVertical ? Qt::RightEdge : Qt::BottomEdge,
                           isVertical ? Qt::LeftEdge : Qt::TopEdge};
    const auto spare = [&](Qt::Edge edge) {
        const QPointF out = outward(edge);
        return reach(bounds, out) - reach(anchor, out) - 2 * halfAlong(body, out) - kArrowHeight;
    };
    const auto *const fitting =
        std::find_if(edges.begin(), edges.end(), [&](Qt::Edge edge) { return spare(edge) >= 0; });
    if (fitting != edges.end())
        return *fitting;
    return *std::max_element(edges.begin(), edges.end(),
                             [&](Qt::Edge a, Qt::Edge b) { return spare(a) < spare(b); });
}

/// Moves a length into a range; one that is too long keeps its beginning inside.
double movedInside(double start, double length, double low, double high)
{
    return std::round(std::max(low, std::min(start, high - length)));
}

QRectF movedInside(const QRectF &rect, const QRectF &bounds)
{
    return {movedInside(rect.x(), rect.width(), bounds.left(), bounds.right()),
            movedInside(rect.y(), rect.height(), bounds.top(), bounds.bottom()), rect.width(),
            rect.height()};
}

/// Keeps the arrow off the body's round corners.
double keptOffCorners(double wanted, double start, double length)
{
    const double corner = std::min(kArrowHalfWidth + kCornerRadius, length / 2);
    return std::clamp(wanted, start + corner, start + length - corner);
}

} // namespace

PopoverGeometry PopoverGeometry::forText(QSizeF text)
{
    const double width = text.width() * (1 + kWidening / (2 + text.width()));
    return {QRectF(kMargin, kMargin, width, text.height()),
            QSizeF(width + 2 * kMargin, text.height() + 2 * kMargin)};
}

PopoverPlacement PopoverPlacement::make(const QRectF &anchor, QSize bodySize, const QRectF &bounds,
                                        Qt::Edge preferred)
{
    const Qt::Edge edge = chosenEdge(anchor, bodySize, bounds, preferred);
    const QPointF out = outward(edge);
    const double distance = kArrowHeight + halfAlong(bodySize, out);
    QRectF body(QPointF(), bodySize);
    body.moveCenter(anchor.center() + out * (halfAlong(anchor.size(), out) + distance));
    body = movedInside(body, bounds);
    const QPointF tip = body.center() - out * distance;
    const QPointF along(keptOffCorners(anchor.center().x(), body.x(), body.width()),
                        keptOffCorners(anchor.center().y(), body.y(), body.height()));
    return {edge, body, out.x() == 0 ? QPointF(along.x(), tip.y()) : QPointF(tip.x(), along.y())};
}

QPainterPath PopoverPlacement::outline() const
{
    const QPointF out = outward(edge);
    const QPointF side(out.y(), out.x());
    // The arrow starts a little inside the body, so that both become one shape.
    const QPointF foot = tip + out * (kArrowHeight + 1);
    QPainterPath arrow(foot - side * kArrowHalfWidth);
    arrow.cubicTo(foot - side * (kArrowHalfWidth / 2), tip - side * kArrowRounding, tip);
    arrow.cubicTo(tip + side * kArrowRounding, foot + side * (kArrowHalfWidth / 2),
                  foot + side * kArrowHalfWidth);
    arrow.closeSubpath();
    QPainterPath shape;
    shape.addRoundedRect(body, kCornerRadius, kCornerRadius);
    return shape.united(arrow);
}
