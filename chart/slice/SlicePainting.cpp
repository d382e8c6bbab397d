#include "chart/slice/SlicePainting.h"

#include <QPainter>
#include <algorithm>
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
void paintUnderlap(QPainter &painter, const SliceLayer &layer, ArcKey edge)
{
    const SliceGeometry &geometry = layer.geometry();
    const double pixel = 1 / std::abs(painter.deviceTransform().m11());
    const double angle = edge == ArcKey::EndAngle ? geometry.end : geometry.start;
    painter.setPen(QPen(layer.brush(), kUnderlap * pixel, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(geometry.center, rimPoint(geometry, angle, pixel));
}

/// Paints a thin light line wherever two slices meet, so that neighbours of the same colour look
/// separate.
void paintSeparators(QPainter &painter, const SliceLayers &layers)
{
    painter.setPen(QPen(kSeparatorColor, kSeparatorWidth, Qt::SolidLine, Qt::FlatCap));
    for (const auto &layer : layers) {
        const SliceGeometry &geometry = layer->geometry();
        if (geometry.sweep() > 0 && layer->isOpaque() && isShared(*layer, ArcKey::EndAngle, layers))
            painter.drawLine(geometry.center, rimPoint(geometry, geometry.end, 0));
    }
}

} // namespace

void paintSlices(QPainter &painter, const SliceLayers &layers, const QRectF &exposed)
{
    OtherLayers over(layers); // the slices that are painted later
    for (const auto &layer : layers) {
        over = over.subspan(1);
        const QBrush brush = layer->brush();
        if (brush.style() == Qt::NoBrush || layer->geometry().sweep() <= 0 ||
            !layer->path().boundingRect().intersects(exposed))
            continue;
        painter.fillPath(layer->path(), brush);
        for (const ArcKey edge : {ArcKey::StartAngle, ArcKey::EndAngle}) {
            if (isShared(*layer, edge, over))
                paintUnderlap(painter, *layer, edge);
        }
    }
    paintSeparators(painter, layers);
}
