#pragma once

#include <QImage>
#include <QRectF>

/// The smallest rectangle around all pixels that differ between two pictures of the same size, in
/// points.
inline QRectF inkBetween(const QImage &first, const QImage &second)
{
    constexpr int kVisible = 24; // of 255; smaller differences come from smooth edges
    QRect ink;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            if (qAbs(qGray(first.pixel(x, y)) - qGray(second.pixel(x, y))) > kVisible)
                ink |= QRect(x, y, 1, 1);
        }
    }
    const double scale = first.devicePixelRatio();
    return {ink.x() / scale, ink.y() / scale, ink.width() / scale, ink.height() / scale};
}

/// The largest difference in any pixel between two pictures of the same size, 0 to 255.
inline int largestDifference(const QImage &first, const QImage &second)
{
    int largest = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x)
            largest = std::max(largest, qAbs(qGray(first.pixel(x, y)) - qGray(second.pixel(x, y))));
    }
    return largest;
}
