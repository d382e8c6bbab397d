#pragma once

#include "chart/slice/ArcAnimation.h"

#include <array>
#include <memory>
#include <optional>

/// The two angles of a slice, each of which can be animated.
enum class ArcKey { StartAngle, EndAngle };

/// The arc of a slice, in radians. It has two states: the model angles are its goal, the presented
/// angles are on screen. They differ while an animation runs. Owned by the slice. Main thread only.
class SliceArc final
{
public:
    /// By ArcKey.
    using Angles = std::array<double, 2>;

    explicit SliceArc(const Angles &model = {}) : m_model(model) {}

    const Angles &model() const { return m_model; }
    double angle(ArcKey key) const { return m_model[slot(key)]; }
    /// Sets the model angle without animation; a running animation goes on.
    void setAngle(ArcKey key, double radians);

    /// The angles on screen; nothing before the arc was first shown.
    const std::optional<Angles> &presented() const { return m_presented; }

    /// Sets the model angle and prepares its animation, which starts from the angle on screen, or
    /// from `fromValue` if there is none. A running animation of the same angle is interrupted. The
    /// new one begins with beginAnimations().
    void createAnimationForKey(ArcKey key, double fromValue, double toValue,
                               ArcAnimationDelegate &delegate);
    /// The animation of an angle; null if there is none.
    const ArcAnimation *animationForKey(ArcKey key) const { return m_animations[slot(key)].get(); }

    /// Shows the arc and begins the animations that were prepared.
    void beginAnimations(MediaTime now, MediaTime duration);
    /// Moves the angles on screen to the given time.
    void advance(MediaTime now);
    /// Ends the animations that are over.
    void finishAnimations(MediaTime now);
    /// Interrupts the animations; the model angles stay.
    void removeAllAnimations();

private:
    static constexpr std::size_t slot(ArcKey key) { return static_cast<std::size_t>(key); }

    Angles m_model;
    std::optional<Angles> m_presented;
    std::array<std::unique_ptr<ArcAnimation>, 2> m_animations;
};
