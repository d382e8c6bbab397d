#pragma once

#include <chrono>
#include <functional>

/// Points in time and lengths of time of animations, in seconds.
using MediaTime = std::chrono::duration<double>;
/// Tells the time, counted from any moment.
using MediaClock = std::function<MediaTime()>;

/// The real time of a steady clock, which is never set back.
MediaTime steadyMediaTime();

class ArcAnimation;

/// How an animation came to its end.
enum class Completion { Finished, Interrupted };

/// Gets a call when an animation begins and when it is over.
class ArcAnimationDelegate
{
public:
    virtual void animationDidStart(const ArcAnimation &animation) = 0;
    virtual void animationDidStop(const ArcAnimation &animation, Completion completion) = 0;

protected:
    ~ArcAnimationDelegate() = default;
};

/// The movement of one angle from one value to another: slow at both ends, with most of the way
/// early. It has no timer: the code that shows it asks for the value at a given time, so a slow
/// machine skips frames and still ends on time. Its address is its identity.
class ArcAnimation final
{
public:
    /// The delegate must outlive the animation.
    ArcAnimation(double fromValue, double toValue, ArcAnimationDelegate &delegate);
    ArcAnimation(const ArcAnimation &) = delete;
    ArcAnimation &operator=(const ArcAnimation &) = delete;

    double fromValue() const { return m_fromValue; }
    double toValue() const { return m_toValue; }

    bool hasBegun() const { return m_hasBegun; }

    /// Starts it at the given time, once, and tells the delegate. A length of zero or less is over
    /// at once.
    void begin(MediaTime now, MediaTime duration);

    /// Tells the delegate that the animation is over, if it ever began. Do not use the animation
    /// afterwards.
    void stop(Completion completion);

    /// The start value before the beginning, the end value from the end on.
    double valueAt(MediaTime time) const;
    bool isOverAt(MediaTime time) const;
    /// When it is over, once it has begun.
    MediaTime end() const { return m_begin + m_duration; }

private:
    double m_fromValue;
    double m_toValue;
    ArcAnimationDelegate &m_delegate;
    bool m_hasBegun = false;
    MediaTime m_begin{};
    MediaTime m_duration{};
};
