#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <stop_token>

/// What each process of a program may use.
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

/// Runs a program that is not trusted. The program gets only the given input and output, and limits
/// on memory, processor time and what it writes. True when it ended by itself and successfully.
/// Once it takes too long or the token says stop, it is killed. The processes that it has started
/// end with it. One that left its process group on purpose does not: the limits hold for it too,
/// but nothing waits for it. Any thread but the main one; blocks.
bool runConfined(const ConfinedProcess &process, const std::stop_token &stop);
