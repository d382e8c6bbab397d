#pragma once

#include <QVariantAnimation>
#include <QWidget>
#include <chrono>

/// Whether this widget itself, not what it holds, is fading to that opacity, and takes so long from
/// beginning to end. Asked right after the fade began, it says the same on a machine of any speed.
inline bool isFading(const QWidget &widget, double to, std::chrono::milliseconds duration)
{
    for (const auto *animation : widget.findChildren<QVariantAnimation *>()) {
        const QObject *opacity = animation->parent(); // what is known of a widget's opacity
        if (opacity && opacity->parent() == &widget &&
            animation->state() == QAbstractAnimation::Running)
            return animation->endValue() == to && animation->duration() == duration.count();
    }
    return false;
}
