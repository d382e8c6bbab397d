#pragma once

#include <QBrush>
#include <QPixmap>
#include <QPointF>
#include <QRegion>
#include <functional>

class QPainter;

/// How to paint large areas without the toolkit's global thread pool.
///
/// The raster engine cuts a fill of many rows into parts for that pool, and waits for them. So a
/// frame waits for whatever else runs there, wakes other processors, and costs more than it gains
/// at the size of our window. The engine hands over what it blends in one step from many spans: a
/// translucent colour, a picture below a clip of many rectangles. It never hands over
/// - an opaque colour, which it only copies,
/// - a gradient from top to bottom, which it fills row by row,
/// - a picture below no clip or one rectangle, which it copies without spans,
/// - few rows at a time.
///
/// Everything that paints large areas keeps to these.

/// A brush for a translucent colour: a gradient from top to bottom between the colour and itself.
/// What it paints equals what the plain colour paints.
QBrush rowByRowBrush(const QColor &color);

/// Calls `paint` once for each rectangle of the region, with the painter clipped to it. Pictures
/// that are drawn there have to do with one rectangle only.
void paintByRectangles(QPainter &painter, const QRegion &region,
                       const std::function<void(const QRect &part)> &paint);

/// Copies a picture of the device's scale to where its top left corner comes to lie, on whole
/// pixels of the device: otherwise each of its pixels would be smeared over two. The toolkit copies
/// pixels at every scale this way; by itself it computes each of them unless the scale is 1 or 2.
/// Copies few rows at a time, for a painter that is clipped to a mask.
void copyToPixels(QPainter &painter, QPointF corner, const QPixmap &picture);
