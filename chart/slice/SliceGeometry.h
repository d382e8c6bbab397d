#pragma once

#include <QPainterPath>
#include <QPoint>
#include <QPointF>

/// Where one slice lies, in the ChartPlane: an arc from `start` to `end`, in radians
/// counter-clockwise, around `center`. Painting, hit test and the position of the label all use it.
/// A value.
struct SliceGeometry
{
    QPointF center;
    double radius = 0;
    double start = 0;
    double end = 0;

    /// Radians, from 0 to a full turn.
    double sweep() const;

    /// The closed outline: from the centre along the arc and back. Non-zero winding.
    QPainterPath createArcPath() const;

    /// The point at `distance` from the centre in the middle of the arc, its coordinates cut
    /// toward zero to whole numbers, so that a label stays sharp.
    QPoint labelPoint(double distance) const;

    friend bool operator==(const SliceGeometry &, const SliceGeometry &) = default;
};
