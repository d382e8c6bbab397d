#include "chart/slice/GradientLayer.h"

#include <QLinearGradient>

void GradientLayer::fit(const QPainterPath &path)
{
    m_path = path;
    m_frame = path.boundingRect();
}

QBrush GradientLayer::brush() const
{
    if (!m_colors)
        return {};
    const auto &[primary, secondary] = *m_colors;
    if (primary == secondary)
        return primary.alpha() > 0 ? QBrush(primary) : QBrush();
    QLinearGradient gradient(m_frame.topLeft(), m_frame.bottomLeft()); // "top" is the smaller y
    gradient.setStops({{0, primary}, {1, secondary}});
    return gradient;
}
