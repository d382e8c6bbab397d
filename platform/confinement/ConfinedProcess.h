#pragma once

#include "platform/confinement/ChildConfinement.h"

#include <QString>
#include <QStringList>
#include <chrono>
#include <optional>
#include <stop_token>

/// A program to run, and how long it may take.
struct ConfinedProcess
{
    QString program;
    QStringList arguments;
    QString workingFolder;
    std::chrono::milliseconds patience{};
    int input = -1;          ///< an open file that it reads as its standard input; -1 for none
    int kept = -1;           ///< a descriptor that it inherits under its number; -1 for none
    QString outputFile = {}; ///< where its standard output goes; empty for nowhere
    ProcessLimits limits = {};
};

/// Runs a program that is not trusted. The program gets only what confineChild() leaves it, and the
/// given input and output. Its exit code; nothing when it was not started, crashed or was killed.
/// Once it takes too long or the token says stop, it is killed. The processes that it has started
/// end with it. One that left its process group on purpose does not: the limits hold for it too,
/// but nothing waits for it. Any thread but the main one; blocks.
std::optional<int> runConfined(const ConfinedProcess &wanted, const std::stop_token &stop);
