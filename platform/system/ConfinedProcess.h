#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <stop_token>

/// What a program may use; each of its own processes.
struct ProcessLimits
{
    quint64 memory = 4ULL << 30;    ///< address space, in bytes
    quint64 fileSize = 64ULL << 20; ///< of each file it writes, in bytes
    std::chrono::seconds processorTime = std::chrono::seconds(30);
};

/// A program to run, and how long it may take.
struct ConfinedProcess
{
    QString program;
    QStringList arguments;
    QString workingFolder;
    std::chrono::milliseconds patience{};
    int input = -1;          ///< an open file that it reads as its standard input; -1 for none
    QString outputFile = {}; ///< where its standard output goes; empty for nowhere
    ProcessLimits limits = {};
};

/// Runs a program that nobody vouches for, with no input or output but what it is given, and with
/// limits on memory, processor time and what it writes. True when it ended by itself, and well.
/// Once it takes too long or the token says stop, it is killed. What it has started ends with it,
/// unless that has left its process group on purpose: the limits hold for that too, but it is not
/// waited for. Any thread but the main one; blocks.
bool runConfined(const ConfinedProcess &process, const std::stop_token &stop);
