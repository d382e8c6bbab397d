#pragma once

#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <functional>

/// What is to be seen when so much time has passed. Timers of one thread are answered in the order
/// in which they are due, so that on however busy a machine that which is due earlier has happened
/// by then, and that which is due later has not.
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
