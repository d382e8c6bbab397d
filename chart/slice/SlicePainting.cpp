#include "chart/slice/SlicePainting.h"

#include "platform/look/OwnThreadPainting.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>

namespace {

using OtherLayers = std::span<const std::shared_ptr<SliceLayer>>;

constexpr double kSameAngle = 1e-6;
/// In pixels of the device; half of it lies on either side of the edge.
constexpr double kUnderlap = 2;

constexpr QColor kSeparatorColor(255, 255, 255, 60);
constexpr double kSeparatorWidth = 1;

struct Ring
{
    QColor color;
    double width = 0;
};
/// The focus ring, inside the slice's edge: a light band with a dark rim, visible on any colour and
/// before any background. Painted from the widest to the narrowest.
constexpr std::array kFocusRings{Ring{QColor(0, 0, 0, 90), 6}, Ring{QColor(255, 255, 255), 5},
                                 Ring{QColor(0, 0, 0, 140), 1.5}};

/// The part of the slice that can be seen, with what is painted around its shape.
QRectF seenExtent(const QPainter &painter, const SliceLayer &layer, const QRectF &seen)
{
    const double pixel = 1 / std::abs(painter.deviceTransform().m11());
    const double around = kUnderlap * pixel;
    return layer.path().boundingRect().adjusted(-around, -around, around, around) & seen;
}

bool isSameAngle(double first, double second)
{
    return std::abs(std::remainder(first - second, 2 * std::numbers::pi)) < kSameAngle;
}

/// Whether one of the other slices is opaque and has the same edge.
bool isShared(const SliceLayer &layer, ArcKey edge, OtherLayers others)
{
    const SliceGeometry &geometry = layer.geometry();
    return std::ranges::any_of(others, [&](const auto &other) {
        const SliceGeometry &neighbour = other->geometry();
        const bool touches = edge == ArcKey::EndAngle ? isSameAngle(neighbour.start, geometry.end)
                                                      : isSameAngle(neighbour.end, geometry.start);
        return other.get() != &layer && touches && neighbour.sweep() > 0 && other->isOpaque();
    });
}

QPointF rimPoint(const SliceGeometry &geometry, double angle, double inset)
{
    return geometry.center + QPointF(std::cos(angle), std::sin(angle)) * (geometry.radius - inset);
}

/// Paints a line along the edge in the slice's own colours; it reaches below the neighbour. It ends
/// before the rim, where the neighbour's edge is smooth too.
void paintUnderlap(QPainter &painter, const SliceLook &look, double angle)
{
    const double pixel = 1 / std::abs(painter.deviceTransform().m11());
    painter.setPen(QPen(look.brush, kUnderlap * pixel, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(look.geometry.center, rimPoint(look.geometry, angle, pixel));
}

/// The slice's brush, as one that the toolkit fills on this thread.
QBrush ownThreadBrush(const SliceLayer &layer)
{
    const QBrush brush = layer.brush();
    const bool isPlain = brush.style() == Qt::SolidPattern;
    return isPlain && !brush.isOpaque() ? rowByRowBrush(brush.color()) : brush;
}

void paintShape(QPainter &painter, const QPainterPath &path, const SliceLook &look)
{
    painter.fillPath(path, look.brush);
    if (look.reachesBelowStart)
        paintUnderlap(painter, look, look.geometry.start);
    if (look.reachesBelowEnd)
        paintUnderlap(painter, look, look.geometry.end);
}

/// Paints a thin light line wherever two slices meet, so that neighbours of the same colour look
/// separate.
void paintSeparators(QPainter &painter, const SliceLayers &layers)
{
    painter.setPen(
        QPen(rowByRowBrush(kSeparatorColor), kSeparatorWidth, Qt::SolidLine, Qt::FlatCap));
    for (const auto &layer : layers) {
        const SliceGeometry &geometry = layer->geometry();
        if (geometry.sweep() > 0 && layer->isOpaque() && isShared(*layer, ArcKey::EndAngle, layers))
            painter.drawLine(geometry.center, rimPoint(geometry, geometry.end, 0));
    }
}

} // namespace

void paintSlices(QPainter &painter, const SliceLayers &layers, const QRectF &exposed,
                 const QRectF &seen)
{
    OtherLayers over(layers); // the slices that are painted later
    for (const auto &layer : layers) {
        over = over.subspan(1);
        const SliceLook look{layer->geometry(), ownThreadBrush(*layer),
                             isShared(*layer, ArcKey::StartAngle, over),
                             isShared(*layer, ArcKey::EndAngle, over)};
        const QRectF extent = seenExtent(painter, *layer, seen);
        if (look.brush.style() == Qt::NoBrush || look.geometry.sweep() <= 0 ||
            !extent.intersects(exposed))
            continue;
        layer->picture().paint(painter, look, extent,
                               [&](QPainter &target) { paintShape(target, layer->path(), look); });
    }
    paintSeparators(painter, layers);
}

void paintFocusRing(QPainter &painter, const SliceLayer &layer, const QRectF &seen,
                    SlicePicture &picture)
{
    const QRectF extent = seenExtent(painter, layer, seen);
    picture.paint(painter, {layer.geometry(), {}}, extent, [&layer](QPainter &target) {
        target.setClipPath(layer.path(), Qt::IntersectClip);
        for (const Ring &ring : kFocusRings)
            target.strokePath(layer.path(), QPen(rowByRowBrush(ring.color), 2 * ring.width));
    });
}
