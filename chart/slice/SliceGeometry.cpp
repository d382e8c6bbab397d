#include "chart/slice/SliceGeometry.h"

#include <QtMath>
#include <cmath>
#include <numbers>

namespace {

constexpr double kFullTurn = 2 * std::numbers::pi;

} // namespace

double SliceGeometry::sweep() const
{
    // Rounding may put the end of an empty slice slightly before its start; the angle between them
    // would then be nearly a full turn.
    return std::clamp(end - start, 0.0, kFullTurn);
}

QPainterPath SliceGeometry::createArcPath() const
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.moveTo(center);
    // Qt counts angles against its own y axis. Hence these signs in a plane whose y grows upwards.
    path.arcTo(QRectF(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius),
               -qRadiansToDegrees(start), -qRadiansToDegrees(sweep()));
    path.closeSubpath();
    return path;
}

QPoint SliceGeometry::labelPoint(double distance) const
{
    const double middle = (start + end) * 0.5;
    return {static_cast<int>(center.x() + std::cos(middle) * distance),
            static_cast<int>(center.y() + std::sin(middle) * distance)};
}
