#pragma once

#include <QDir>
#include <QFile>
#include <QTest>
#include <csignal>
#include <unistd.h>

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

/// Whether a process runs that has this argument. In a sandbox processes have other numbers.
inline bool isRunning(const QByteArray &argument)
{
    for (const QString &number : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile line(QStringLiteral("/proc/%1/cmdline").arg(number));
        if (line.open(QIODevice::ReadOnly) && line.readAll().split('\0').contains(argument))
            return true;
    }
    return false;
}

/// Seconds for a program of the shell to sleep: nobody else sleeps as long.
inline QByteArray longSleep(int which)
{
    return QByteArray::number(10'000'000LL * which + ::getpid());
}
