#pragma once

#include <QVariantAnimation>
#include <QWidget>
#include <chrono>

/// Whether this widget itself, not one inside it, is fading to that opacity, with that duration
/// from beginning to end. Right after the fade began, the answer is the same on a machine of any
/// speed.
inline bool isFading(const QWidget &widget, double to, std::chrono::milliseconds duration)
{
    for (const auto *animation : widget.findChildren<QVariantAnimation *>()) {
        const QObject *opacity = animation->parent(); // the object that keeps a widget's opacity
        if (opacity && opacity->parent() == &widget &&
            animation->state() == QAbstractAnimation::Running)
            return animation->endValue() == to && animation->duration() == duration.count();
    }
    return false;
}
