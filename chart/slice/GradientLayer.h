#pragma once

#include <QBrush>
#include <QColor>
#include <QPainterPath>
#include <QRectF>
#include <array>
#include <optional>

/// The gradient on a slice: two colours, from the bottom of its frame to the top, masked with the
/// slice's shape. In the ChartPlane. A value.
class GradientLayer final
{
public:
    /// First and second colour.
    using Colors = std::array<QColor, 2>;

    /// Without colours nothing is painted.
    const std::optional<Colors> &colors() const { return m_colors; }
    void setColors(const std::optional<Colors> &colors) { m_colors = colors; }

    /// Fits frame and mask to the slice's shape.
    void fit(const QPainterPath &path);

    QRectF frame() const { return m_frame; }
    /// The shape, relative to the frame's origin.
    QPainterPath mask() const { return m_path.translated(-m_frame.topLeft()); }

    /// The brush that fills the masked frame; none without colours.
    QBrush brush() const;

private:
    std::optional<Colors> m_colors;
    QRectF m_frame;
    QPainterPath m_path;
};
