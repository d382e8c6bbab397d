#include "chart/PieAnimation.h"

#include "chart/PieView.h"
#include "platform/look/ViewAlpha.h"

namespace {

constexpr std::chrono::milliseconds kFrame{1000 / 60};

} // namespace

PieAnimation::PieAnimation(PieView &view) : QObject(&view), m_view(view)
{
    m_updateTimer.setObjectName(QStringLiteral("updateTimer"));
    m_updateTimer.setTimerType(Qt::PreciseTimer);
    m_updateTimer.setInterval(kFrame);
    connect(&m_updateTimer, &QTimer::timeout, this, &PieAnimation::updateTimerFired);
}

void PieAnimation::prepare(SliceLayer &layer, Arc from, Arc to)
{
    layer.createArcAnimationForKey(ArcKey::StartAngle, from.start, to.start, *this);
    layer.createArcAnimationForKey(ArcKey::EndAngle, from.end, to.end, *this);
}

void PieAnimation::commit()
{
    const MediaTime now = m_clock();
    const auto wanted = std::chrono::ceil<std::chrono::milliseconds>(MediaTime(m_speed));
    const MediaTime duration = animationDuration(m_view, wanted);
    for (const auto &layer : m_view.sliceLayers())
        layer->arc().beginAnimations(now, duration);
    m_view.refreshSliceLayers(LayerState::Presentation);
    if (duration <= MediaTime::zero())
        updateTimerFired();
}

void PieAnimation::updateTimerFired()
{
    const MediaTime now = m_clock();
    for (const auto &layer : m_view.sliceLayers())
        layer->arc().advance(now);
    m_view.refreshSliceLayers(LayerState::Presentation);
    // A copy, because a receiver of the signal of the last end may put in other slices.
    for (const auto &layer : SliceLayers(m_view.sliceLayers()))
        layer->arc().finishAnimations(now);
}

void PieAnimation::animationDidStart(const ArcAnimation &animation)
{
    Q_EMIT started();
    if (!m_updateTimer.isActive())
        m_updateTimer.start();
    m_running.push_back(&animation);
}

void PieAnimation::animationDidStop(const ArcAnimation &animation, Completion completion)
{
    std::erase(m_running, &animation);
    if (!m_running.empty() || completion == Completion::Interrupted)
        return;
    m_updateTimer.stop();
    Q_EMIT finished();
}
