#pragma once

#include <QPainter>
#include <QRect>

/// How a shadow looks.
struct SoftShadow
{
    int reach = 0;       ///< points until it is gone
    int radius = 0;      ///< of the body's corners
    double strength = 0; ///< its opacity right at the body's edge, 0 to 1
};

/// Paints the shadow of a body, also in the area that the body itself covers. Cheap: one small
/// picture is drawn once for each look and scale, and stretched. Main thread only.
void paintSoftShadow(QPainter &painter, const QRect &body, const SoftShadow &shadow);
