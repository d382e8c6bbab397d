#pragma once

#include "chart/slice/SliceLayer.h"

class QPainter;

/// Paints the shapes of the slices, not their labels, in the given order into the ChartPlane. Those
/// that do not reach into `exposed` may be left out.
///
/// Neighbours meet without a gap: two smooth edges side by side would let the ground shine through
/// as a light hairline.
void paintSlices(QPainter &painter, const SliceLayers &layers, const QRectF &exposed);
