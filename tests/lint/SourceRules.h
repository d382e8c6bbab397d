#pragma once

#include "tests/lint/House.h"

#include <functional>

/// One rule of the house: what it forbids, where, and why.
struct SourceRule
{
    const char *name;
    const char *reason;
    std::function<bool(const SourceText &)> appliesTo;
    std::function<QList<int>(const SourceText &)> badLines; ///< from 1
};

/// The offences of a file against a rule, each as "path:line: reason".
QStringList offences(const SourceRule &rule, const SourceText &source);

/// The engines are the rooms that say CORE.
QList<SourceRule> sourceRules(const House &house);
