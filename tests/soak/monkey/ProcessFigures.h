#pragma once

#include <QtGlobal>

/// What this process takes of the machine.
struct ProcessFigures
{
    qint64 memory = 0; ///< bytes that are in memory now
    int descriptors = 0;

    static ProcessFigures now();
};
