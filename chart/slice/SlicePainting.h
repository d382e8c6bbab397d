#pragma once

#include "chart/slice/SliceLayer.h"

class QPainter;

/// Paints the shapes of the slices, not their labels, in the given order into the ChartPlane. May
/// leave out slices that do not reach into `exposed`. Nothing is ever seen outside `seen`. Slices
/// that stand still come from their pictures.
///
/// Neighbours meet without a gap: otherwise the background would shine through between two smooth
/// edges as a thin light line.
void paintSlices(QPainter &painter, const SliceLayers &layers, const QRectF &exposed,
                 const QRectF &seen);

/// Paints the focus ring of a slice into the ChartPlane; `picture` keeps it.
void paintFocusRing(QPainter &painter, const SliceLayer &layer, const QRectF &seen,
                    SlicePicture &picture);
