#pragma once

#include "tests/lint/SourceText.h"

#include <functional>

/// One rule of the house: what it forbids where, and why.
struct SourceRule
{
    const char *name;
    const char *reason;
    std::function<bool(const SourceText &)> appliesTo;
    std::function<QList<int>(const SourceText &)> badLines; ///< from 1
};

/// What a file does against a rule, one "path:line: reason" each.
QStringList offences(const SourceRule &rule, const SourceText &source);

/// `engineFiles` are the paths of the files that make up the engines.
QList<SourceRule> sourceRules(const QStringList &engineFiles);

/// The sources that a folder's CMakeLists.txt puts into an engine, with their headers.
QStringList engineFiles(const QString &folder, const QString &cmakeText);
