#include "chart/PieAnimation.h"

#include "chart/PieView.h"
#include "platform/look/ViewAlpha.h"

#include <QEvent>
#include <QWindow>
#include <algorithm>

namespace {

constexpr std::chrono::milliseconds kFrame{1000 / 60};

} // namespace

PieAnimation::PieAnimation(PieView &view) : QObject(&view), m_view(view)
{
    m_updateTimer.setObjectName(QStringLiteral("updateTimer"));
    m_updateTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_updateTimer, &QTimer::timeout, this, &PieAnimation::updateTimerFired);
    view.installEventFilter(this);
}

/// What is painted can be seen, so its frames go on.
bool PieAnimation::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::Paint && isRunning() &&
        m_updateTimer.intervalAsDuration() > kFrame)
        m_updateTimer.start(kFrame);
    return false;
}

bool PieAnimation::isSeen() const
{
    const QWidget &window = *m_view.window();
    return m_view.isVisible() && !window.isMinimized() && window.windowHandle() != nullptr &&
           window.windowHandle()->isExposed();
}

std::chrono::milliseconds PieAnimation::timeToTheEnd() const
{
    const auto last = std::ranges::max_element(m_running, {}, &ArcAnimation::end);
    return std::chrono::ceil<std::chrono::milliseconds>((*last)->end() - m_clock());
}

/// The window system tells of a window that it covers or takes away in many ways, and not always.
/// So this asks at each frame.
void PieAnimation::wakeUpLater()
{
    const auto pause = isSeen() ? kFrame : std::max(kFrame, timeToTheEnd());
    if (!m_updateTimer.isActive() || m_updateTimer.intervalAsDuration() != pause)
        m_updateTimer.start(pause);
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
    if (isRunning())
        wakeUpLater();
    else
        m_updateTimer.stop();
}

void PieAnimation::animationDidStart(const ArcAnimation &animation)
{
    Q_EMIT started();
    m_running.push_back(&animation);
    wakeUpLater();
}

void PieAnimation::animationDidStop(const ArcAnimation &animation, Completion completion)
{
    std::erase(m_running, &animation);
    if (!m_running.empty() || completion == Completion::Interrupted)
        return;
    m_updateTimer.stop();
    Q_EMIT finished();
}
