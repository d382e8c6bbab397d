#pragma once

#include <QFile>
#include <QTest>
#include <csignal>

/// Waits until the process of this number is gone, or is only kept for its parent to ask about.
/// False if it still runs after a few seconds.
inline bool hasEnded(pid_t number)
{
    return number > 0 && QTest::qWaitFor([number] {
               QFile status(QStringLiteral("/proc/%1/stat").arg(number));
               return ::kill(number, 0) != 0 ||
                      (status.open(QIODevice::ReadOnly) && status.readAll().contains(") Z "));
           });
}
