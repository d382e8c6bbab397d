#pragma once

#include "tests/lint/SourceText.h"

/// A class as a header declares it. A value.
struct DeclaredClass
{
    QString name; ///< the innermost name alone
    QString path; ///< of the header
    int line = 0; ///< of its head, from 1
    int functions = 0;
};

/// The classes and structs of a header, nested ones too. Counted are the functions that a class
/// declares or defines itself: signals, friends and deleted functions are not among them.
QList<DeclaredClass> declaredClasses(const SourceText &header);

/// Classes with more functions than can be kept in mind at once: "path:line: reason".
QStringList classesWithTooManyFunctions(const QList<SourceText> &sources);
/// Classes whose functions are defined in more than one source file. A name that more than one
/// header declares is left out: it cannot be told whose functions they are.
QStringList classesOverSeveralSources(const QList<SourceText> &sources);
