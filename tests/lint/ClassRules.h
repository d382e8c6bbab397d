#pragma once

#include "tests/lint/SourceText.h"

/// A class as a header declares it. A value.
struct DeclaredClass
{
    QString name; ///< only the innermost name
    QString path; ///< of the header
    int line = 0; ///< of its head, from 1
    int functions = 0;
};

/// The classes and structs of a header, nested ones too. The functions that a class declares or
/// defines itself are counted; signals, friends and deleted functions are not.
QList<DeclaredClass> declaredClasses(const SourceText &header);

/// Classes with more functions than a reader can keep in mind at once: "path:line: reason".
QStringList classesWithTooManyFunctions(const QList<SourceText> &sources);
/// Classes whose functions are defined in more than one source file. A name that more than one
/// header declares is left out, because the owner of its functions is unclear.
QStringList classesOverSeveralSources(const QList<SourceText> &sources);
