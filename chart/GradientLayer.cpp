#include "chart/GradientLayer.h"

#include <QLinearGradient>
#include <QPainter>

void GradientLayer::fit(const QPainterPath &path)
{
    m_path = path;
    m_frame = path.boundingRect();
}

void GradientLayer::paint(QPainter &painter) const
{
    if (!m_colors)
        return;
    const auto &[primary, secondary] = *m_colors;
    if (primary == secondary) {
        painter.fillPath(m_path, primary);
        return;
    }
    QLinearGradient gradient(m_frame.topLeft(), m_frame.bottomLeft()); // "top" is the lesser y
    gradient.setStops({{0, primary}, {1, secondary}});
    painter.fillPath(m_path, gradient);
}
