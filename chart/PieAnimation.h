#pragma once

#include "chart/slice/ArcAnimation.h"

#include <QObject>
#include <QTimer>
#include <vector>

class PieView;
class SliceLayer;

/// From where to where an arc goes, in radians.
struct Arc
{
    double start;
    double end;
};

/// Moves the slices of a pie: it begins the animations of their arcs together, takes them through
/// time frame by frame, and knows when the last one is over.
///
/// Owned by the pie. Main thread only.
class PieAnimation final : public QObject, private ArcAnimationDelegate
{
    Q_OBJECT

public:
    /// The view must outlive it, and it the use of the view's slices.
    explicit PieAnimation(PieView &view);

    /// How long an animation takes, in seconds. 0 shows each new state at once, and so does a
    /// desktop whose user switched animations off.
    double speed() const { return m_speed; }
    void setSpeed(double seconds) { m_speed = seconds; }

    /// Where the time is taken from.
    void setClock(MediaClock clock) { m_clock = std::move(clock); }

    bool isRunning() const { return !m_running.empty(); }

    /// Prepares the way of a slice's arc to a new state. A slice that is on screen goes from where
    /// it is seen, another from `from`.
    void prepare(SliceLayer &layer, Arc from, Arc to);
    /// Begins all that is prepared.
    void commit();

    /// Moves the running animations to the clock's time, and ends those whose time has come. Runs
    /// by itself while there are any.
    void updateTimerFired();

Q_SIGNALS:
    /// One more arc is on its way.
    void started();
    /// The last running animation ran to its end: the slices stand still.
    void finished();

private:
    void animationDidStart(const ArcAnimation &animation) override;
    void animationDidStop(const ArcAnimation &animation, Completion completion) override;

    static constexpr double kDefaultSpeed = 0.75;

    PieView &m_view;
    MediaClock m_clock = steadyMediaTime;
    double m_speed = kDefaultSpeed;
    QTimer m_updateTimer{this};
    std::vector<const ArcAnimation *> m_running;
};
