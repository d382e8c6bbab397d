#include "chart/slice/SliceArc.h"

#include <utility>

namespace {

constexpr std::array kArcKeys{ArcKey::StartAngle, ArcKey::EndAngle};

} // namespace

void SliceArc::setAngle(ArcKey key, double radians)
{
    m_model[slot(key)] = radians;
    if (m_presented && !animationForKey(key))
        (*m_presented)[slot(key)] = radians;
}

void SliceArc::createAnimationForKey(ArcKey key, double fromValue, double toValue,
                                     ArcAnimationDelegate &delegate)
{
    auto animation = std::make_unique<ArcAnimation>(
        m_presented ? (*m_presented)[slot(key)] : fromValue, toValue, delegate);
    m_animations[slot(key)].swap(animation);
    m_model[slot(key)] = toValue;
    if (animation)
        animation->stop(Completion::Interrupted);
}

void SliceArc::beginAnimations(MediaTime now, MediaTime duration)
{
    for (const auto &animation : m_animations) {
        if (animation && !animation->hasBegun())
            animation->begin(now, duration);
    }
    if (!m_presented)
        m_presented = m_model;
    advance(now);
}

void SliceArc::advance(MediaTime now)
{
    if (!m_presented)
        return;
    for (const ArcKey key : kArcKeys) {
        const ArcAnimation *animation = animationForKey(key);
        (*m_presented)[slot(key)] = animation ? animation->valueAt(now) : angle(key);
    }
}

void SliceArc::finishAnimations(MediaTime now)
{
    for (auto &slot : m_animations) {
        if (slot && slot->isOverAt(now))
            std::exchange(slot, nullptr)->stop(Completion::Finished);
    }
}

void SliceArc::removeAllAnimations()
{
    for (auto &slot : m_animations) {
        if (slot)
            std::exchange(slot, nullptr)->stop(Completion::Interrupted);
    }
}
