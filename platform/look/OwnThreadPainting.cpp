#include "platform/look/OwnThreadPainting.h"

#include <QLinearGradient>
#include <QPainter>

namespace {

/// Below a mask, or a clip of many rectangles, each row is a span; the engine hands over 96 spans.
constexpr int kRowsAtOnce = 64;

} // namespace

QBrush rowByRowBrush(const QColor &color)
{
    QLinearGradient gradient(0, 0, 0, 1); // beyond its ends it goes on in the same colour
    gradient.setStops({{0, color}, {1, color}});
    return gradient;
}

void paintByRectangles(QPainter &painter, const QRegion &region,
                       const std::function<void(const QRect &part)> &paint)
{
    if (region.rectCount() <= 1) {
        paint(region.boundingRect()); // the widget's own clip is this rectangle
        return;
    }
    for (const QRect &part : region) {
        painter.save();
        painter.setClipRect(part);
        paint(part);
        painter.restore();
    }
}

void copyToPixels(QPainter &painter, QPointF corner, const QPixmap &picture)
{
    const QTransform device = painter.deviceTransform();
    painter.save();
    painter.setTransform(device.inverted(), true); // the device's own coordinates
    const QPoint pixel = device.map(corner).toPoint();
    for (int y = 0; y < picture.height(); y += kRowsAtOnce) {
        const QRect rows = QRect(0, y, picture.width(), kRowsAtOnce) & picture.rect();
        painter.drawPixmap(rows.translated(pixel), picture, rows);
    }
    painter.restore();
}
