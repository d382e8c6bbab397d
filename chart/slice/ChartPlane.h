#pragma once

#include <QPointF>
#include <QRectF>
#include <QTransform>

/// The plane in which the pie is laid out: the origin is at the widget's bottom left and y grows
/// upwards, so angles grow counter-clockwise. Only this class knows how the plane lies in a widget,
/// whose y grows downwards. A value.
class ChartPlane final
{
public:
    /// `height` is the widget's, in points.
    explicit ChartPlane(double height) : m_height(height) {}

    QPointF toWidget(QPointF point) const { return {point.x(), m_height - point.y()}; }
    QPointF fromWidget(QPointF point) const { return {point.x(), m_height - point.y()}; }

    QRectF toWidget(const QRectF &rect) const
    {
        return {rect.x(), m_height - rect.bottom(), rect.width(), rect.height()};
    }

    QRectF fromWidget(const QRectF &rect) const { return toWidget(rect); } // its own inverse

    /// For painting shapes of the plane into the widget. Not for text: it would be mirrored.
    QTransform transform() const { return {1, 0, 0, -1, 0, m_height}; }

private:
    double m_height;
};
