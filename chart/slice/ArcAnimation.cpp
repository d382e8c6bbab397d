#include "chart/slice/ArcAnimation.h"

#include <QEasingCurve>
#include <QPointF>

namespace {

constexpr QPointF kFirstControlPoint(0.25, 0.1);
constexpr QPointF kSecondControlPoint(0.25, 1);

const QEasingCurve &timingCurve()
{
    static const QEasingCurve curve = [] {
        QEasingCurve bezier(QEasingCurve::BezierSpline);
        bezier.addCubicBezierSegment(kFirstControlPoint, kSecondControlPoint, {1, 1});
        return bezier;
    }();
    return curve;
}

} // namespace

MediaTime steadyMediaTime()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

ArcAnimation::ArcAnimation(double fromValue, double toValue, ArcAnimationDelegate &delegate)
    : m_fromValue(fromValue), m_toValue(toValue), m_delegate(delegate)
{
}

void ArcAnimation::begin(MediaTime now, MediaTime duration)
{
    m_hasBegun = true;
    m_begin = now;
    m_duration = duration;
    m_delegate.animationDidStart(*this);
}

void ArcAnimation::stop(Completion completion)
{
    if (m_hasBegun)
        m_delegate.animationDidStop(*this, completion);
}

double ArcAnimation::valueAt(MediaTime time) const
{
    if (!m_hasBegun || time < m_begin)
        return m_fromValue;
    if (isOverAt(time))
        return m_toValue;
    const double progress = timingCurve().valueForProgress((time - m_begin) / m_duration);
    return m_fromValue + (m_toValue - m_fromValue) * progress;
}

bool ArcAnimation::isOverAt(MediaTime time) const
{
    return m_hasBegun && time >= m_begin + m_duration;
}
