#include "chart/SliceLayer.h"

#include <QDebug>
#include <QtMath>
#include <algorithm>

namespace {

constexpr QPointF kCopyShadowOffset(5, 5);
constexpr std::array kArcKeys{ArcKey::StartAngle, ArcKey::EndAngle};
/// From this angle on, in radians, a growing slice has room for its label.
constexpr double kLabelSweep = 0.35;

} // namespace

SliceLayer::SliceLayer(const SliceLayer &layer)
    : m_angles(layer.m_angles),
      m_geometry(layer.m_geometry),
      m_path(layer.m_path),
      m_fillColor(layer.m_fillColor),
      m_shadowColor(Qt::black),
      m_shadowOffset(kCopyShadowOffset)
{
}

void SliceLayer::setAngle(ArcKey key, double radians)
{
    m_angles[slot(key)] = radians;
    if (m_presentedAngles && !animationForKey(key))
        (*m_presentedAngles)[slot(key)] = radians;
}

std::unique_ptr<SliceLayer> SliceLayer::presentationLayer() const
{
    if (!m_presentedAngles)
        return nullptr;
    auto copy = std::make_unique<SliceLayer>(*this);
    copy->m_angles = *m_presentedAngles;
    return copy;
}

void SliceLayer::createArcAnimationForKey(ArcKey key, double fromValue, double toValue,
                                          ArcAnimationDelegate &delegate)
{
    const auto presentation = presentationLayer();
    auto animation = std::make_unique<ArcAnimation>(
        presentation ? presentation->angle(key) : fromValue, toValue, delegate);
    m_animations[slot(key)].swap(animation);
    m_angles[slot(key)] = toValue;
    if (animation)
        animation->stop(Completion::Interrupted);
}

void SliceLayer::beginAnimations(MediaTime now, MediaTime duration)
{
    for (const auto &animation : m_animations) {
        if (animation && !animation->hasBegun())
            animation->begin(now, duration);
    }
    if (!m_presentedAngles)
        m_presentedAngles = m_angles;
    advance(now);
}

void SliceLayer::advance(MediaTime now)
{
    if (!m_presentedAngles)
        return;
    for (const ArcKey key : kArcKeys) {
        const ArcAnimation *animation = animationForKey(key);
        (*m_presentedAngles)[slot(key)] = animation ? animation->valueAt(now) : angle(key);
    }
}

void SliceLayer::finishAnimations(MediaTime now)
{
    for (auto &slot : m_animations) {
        if (slot && slot->isOverAt(now))
            std::exchange(slot, nullptr)->stop(Completion::Finished);
    }
}

void SliceLayer::removeAllAnimations()
{
    for (auto &slot : m_animations) {
        if (slot)
            std::exchange(slot, nullptr)->stop(Completion::Interrupted);
    }
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
