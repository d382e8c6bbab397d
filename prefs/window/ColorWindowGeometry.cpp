#include "prefs/window/ColorWindowGeometry.h"

namespace {

constexpr double kMargin = 5; // at the left, the right and the bottom
constexpr double kTitleBand = 20;
constexpr double kButtonLeft = 9;
constexpr double kButtonGap = 6;
constexpr double kTitleHeight = 22;
constexpr double kTitleInset = 50;

} // namespace

ColorWindowGeometry ColorWindowGeometry::make(QSizeF frame, QSizeF closeButton,
                                              QSizeF minimizeButton)
{
    const double top = frame.height() - kMargin;
    ColorWindowGeometry geometry;
    geometry.content = {kMargin, kMargin, frame.width() - 2 * kMargin,
                        frame.height() - kMargin - kTitleBand};
    geometry.closeButton = {QPointF(kButtonLeft, top - closeButton.height()), closeButton};
    geometry.minimizeButton = {geometry.closeButton.topLeft() +
                                   QPointF(closeButton.width() + kButtonGap, 0),
                               minimizeButton};
    geometry.titleField = {kTitleInset, top - kTitleHeight, frame.width() - 2 * kTitleInset,
                           kTitleHeight};
    return geometry;
}

QRect flipped(const QRectF &rect, int frameHeight)
{
    return QRectF(QPointF(rect.x(), frameHeight - rect.y() - rect.height()), rect.size()).toRect();
}
