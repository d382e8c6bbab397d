#pragma once

#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <functional>

/// Returns what `look` returns when this much time has passed. Timers of one thread run in the
/// order in which they are due. So, however busy the machine is, everything that is due earlier has
/// happened by then, and nothing that is due later.
inline bool seenAfter(std::chrono::milliseconds time, const std::function<bool()> &look)
{
    bool seen = false;
    QEventLoop loop;
    QTimer::singleShot(time, Qt::PreciseTimer, &loop, [&] {
        seen = look();
        loop.quit();
    });
    loop.exec();
    return seen;
}
