#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <stop_token>

/// A program to run, and how long it may take.
struct ConfinedProcess
{
    QString program;
    QStringList arguments;
    QString workingFolder;
    std::chrono::milliseconds patience;
};

/// Runs a program that nobody vouches for, without input or output, and with limits on memory,
/// processor time and what it writes. True when it ended by itself, and well. Once it takes too
/// long or the token says stop, it is killed. Whatever it has started ends with it. Any thread but
/// the main one; blocks.
bool runConfined(const ConfinedProcess &process, const std::stop_token &stop);
