#pragma once

#include <QProcess>
#include <chrono>
#include <optional>

/// What each process of a program may use.
struct ProcessLimits
{
    static constexpr quint64 kMemory = 4ULL * 1024 * 1024 * 1024;
    static constexpr quint64 kFileSize = 64ULL * 1024 * 1024;
    static constexpr std::chrono::seconds kProcessorTime{30};

    std::optional<quint64> memory = kMemory; ///< address space, in bytes
    quint64 fileSize = kFileSize;            ///< of each file it writes, in bytes
    std::optional<std::chrono::seconds> processorTime = kProcessorTime;
};

/// What a program that is not trusted gets from this one. A value.
struct ChildConfinement
{
    ProcessLimits limits = {};
    int input = -1; ///< an open file that it reads as its standard input; -1 for what QProcess says
    int kept = -1;  ///< a descriptor that it inherits under its number; -1 for none
    QStringList variables = {}; ///< of our environment that it gets too, if they are set
};

/// Prepares a process that has not been started. The program will get three standard streams, and
/// of our environment the language, the time zone and a search path of system folders: no home, no
/// bus, no agent. It gains no rights by what it starts, leads a process group of its own, and keeps
/// within the limits. It is not started at all where the system cannot do this. The descriptors
/// have to stay open until it has started.
void confineChild(QProcess &process, const ChildConfinement &confinement);
