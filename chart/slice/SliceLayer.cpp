#include "chart/slice/SliceLayer.h"

#include <QDebug>
#include <QtMath>
#include <algorithm>

namespace {

constexpr QPointF kCopyShadowOffset(5, 5);
/// From this angle on, in radians, a growing slice has room for its label.
constexpr double kLabelSweep = 0.35;

} // namespace

SliceLayer::SliceLayer(const SliceLayer &layer)
    : m_arc(layer.m_arc.model()),
      m_geometry(layer.m_geometry),
      m_path(layer.m_path),
      m_fillColor(layer.m_fillColor),
      m_shadowColor(Qt::black),
      m_shadowOffset(kCopyShadowOffset)
{
}

std::unique_ptr<SliceLayer> SliceLayer::presentationLayer() const
{
    if (!m_arc.presented())
        return nullptr;
    auto copy = std::make_unique<SliceLayer>(*this);
    copy->m_arc = SliceArc(*m_arc.presented());
    return copy;
}

void SliceLayer::setGeometry(const SliceGeometry &geometry)
{
    m_geometry = geometry;
    m_path = geometry.createArcPath();
    if (m_gradientLayer)
        m_gradientLayer->fit(m_path);
}

GradientLayer &SliceLayer::madeGradientLayer()
{
    if (!m_gradientLayer) {
        m_gradientLayer.emplace();
        m_gradientLayer->fit(m_path);
    }
    return *m_gradientLayer;
}

double SliceLayer::infoOpacity() const
{
    const double goal = endAngle() - startAngle();
    const double needed = goal > 0 ? std::min(goal, kLabelSweep) : kLabelSweep;
    return std::clamp(m_geometry.sweep() / needed, 0.0, 1.0);
}

QBrush SliceLayer::brush() const
{
    if (m_gradientLayer && m_gradientLayer->colors())
        return m_gradientLayer->brush();
    return m_fillColor && m_fillColor->alpha() > 0 ? QBrush(*m_fillColor) : QBrush();
}

QDebug operator<<(QDebug debug, const SliceLayer &layer)
{
    const QDebugStateSaver saver(debug);
    debug.noquote() << QString::asprintf(
        "value:%f, percentage:%0.0f, start:%f, end:%f", layer.value(), layer.percentage(),
        qRadiansToDegrees(layer.startAngle()), qRadiansToDegrees(layer.endAngle()));
    return debug;
}
