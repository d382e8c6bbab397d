#pragma once

#include "chart/slice/ArcAnimation.h"

#include <QObject>
#include <QTimer>
#include <vector>

class PieView;
class SliceLayer;

/// The two angles between which an arc lies, in radians.
struct Arc
{
    double start;
    double end;
};

/// Moves the slices of a pie: it begins the animations of their arcs together, advances them frame
/// by frame, and knows when the last one is over.
///
/// While nobody can see the pie there are no frames: the next wake-up is the end of the movement.
/// A pie that stands still has no timer at all.
///
/// Owned by the pie. Main thread only.
class PieAnimation final : public QObject, private ArcAnimationDelegate
{
    Q_OBJECT

public:
    /// The view must outlive this object. This object must live as long as the view's slices are
    /// used.
    explicit PieAnimation(PieView &view);

    /// How long an animation takes, in seconds. With 0 each new state is shown at once; the same
    /// happens on a desktop whose user switched animations off.
    double speed() const { return m_speed; }
    void setSpeed(double seconds) { m_speed = seconds; }

    /// Sets the clock that tells the time.
    void setClock(MediaClock clock) { m_clock = std::move(clock); }

    bool isRunning() const { return !m_running.empty(); }

    /// Prepares the movement of a slice's arc to a new state. A slice that is on screen moves from
    /// where it is seen, any other from `from`.
    void prepare(SliceLayer &layer, Arc from, Arc to);
    /// Begins all movements that are prepared.
    void commit();

    /// Moves the running animations to the clock's time, and ends those whose time has come. The
    /// timer calls it while there are any.
    void updateTimerFired();

Q_SIGNALS:
    /// One more arc has begun to move.
    void started();
    /// The last running animation has reached its end: the slices stand still.
    void finished();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void wakeUpLater();
    bool isSeen() const;
    std::chrono::milliseconds timeToTheEnd() const;
    void animationDidStart(const ArcAnimation &animation) override;
    void animationDidStop(const ArcAnimation &animation, Completion completion) override;

    static constexpr double kDefaultSpeed = 0.75;

    PieView &m_view;
    MediaClock m_clock = steadyMediaTime;
    double m_speed = kDefaultSpeed;
    QTimer m_updateTimer{this};
    std::vector<const ArcAnimation *> m_running;
};
