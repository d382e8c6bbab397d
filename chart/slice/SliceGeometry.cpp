#include "chart/slice/SliceGeometry.h"

#include <QLineF>
#include <QtMath>
#include <cmath>
#include <numbers>

namespace {

constexpr double kFullTurn = 2 * std::numbers::pi;

/// The toolkit draws smooth shapes in bands of some forty rows, and for each band it walks along
/// every line that touches it, from end to end. With lines no longer than this, in points, each is
/// walked once or twice; with long ones most of the time of a fill goes there.
constexpr double kLongestLine = 12;

/// Adds a straight line as a row of short ones; they end in the same place.
void addShortLines(QPainterPath &path, QPointF end)
{
    const QPointF begin = path.currentPosition();
    const int count = static_cast<int>(QLineF(begin, end).length() / kLongestLine) + 1;
    for (int i = 1; i < count; ++i)
        path.lineTo(begin + (end - begin) * i / count);
    path.lineTo(end);
}

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
    const QRectF circle(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius);
    // Qt counts angles against its own y axis. Hence these signs in a plane whose y grows upwards.
    QPainterPath arc;
    arc.arcMoveTo(circle, -qRadiansToDegrees(start));
    path.moveTo(center);
    addShortLines(path, arc.currentPosition());
    path.arcTo(circle, -qRadiansToDegrees(start), -qRadiansToDegrees(sweep()));
    addShortLines(path, center);
    path.closeSubpath();
    return path;
}

QPoint SliceGeometry::labelPoint(double distance) const
{
    const double middle = (start + end) * 0.5;
    return {static_cast<int>(center.x() + std::cos(middle) * distance),
            static_cast<int>(center.y() + std::sin(middle) * distance)};
}
