#pragma once

#include <QByteArray>

/// Changes to bytes, written as bytes: four for each change, what does not fill four changes
/// nothing. So a fuzzer that knows nothing of a format reaches all that lies close to a good file.

/// What is left of `whole` after the changes.
QByteArray edited(QByteArray whole, const QByteArray &edits);

/// How many changes these bytes stand for.
qsizetype editCount(const QByteArray &edits);

/// The mode that an input begins with, 0 to `modes` - 1, and the rest of the input.
struct ModedInput
{
    ModedInput(const QByteArray &input, int modes);

    int mode = 0;
    QByteArray rest;
};
