#pragma once

#include <QRectF>

/// Where the parts of a ColorWindow's frame lie, in points, with y growing upwards from the
/// frame's lower left. A value.
struct ColorWindowGeometry
{
    QRectF content;
    QRectF closeButton;
    QRectF minimizeButton;
    QRectF titleField;

    /// For a window of this size. For a window without buttons of its own, the buttons' rectangles
    /// are empty.
    static ColorWindowGeometry make(QSizeF frame, QSizeF closeButton, QSizeF minimizeButton);
};

/// The rectangle as widgets count, with y growing downwards from the upper left of a frame of this
/// height.
QRect flipped(const QRectF &rect, int frameHeight);
