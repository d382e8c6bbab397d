#include "bench/ProcessMemory.h"

#include <QFile>

/// getrusage() would be simpler, but its peak includes the program that the process ran before.
qint64 peakResidentBytes()
{
    constexpr qint64 kBytesPerKilobyte = 1024;
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.simplified().split(' ').value(1).toLongLong() * kBytesPerKilobyte;
    }
    return 0;
}
