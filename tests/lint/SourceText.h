#pragma once

#include <QString>
#include <QStringList>

/// One file of the repository, split into the parts that rules check. All three lists have the same
/// lines, so a line number means the same in each. A value.
struct SourceText
{
    QString path;         ///< from the top of the repository, "chart/PieChart.cpp"
    QStringList lines;    ///< as written
    QStringList code;     ///< comments and the insides of literals blanked out
    QStringList comments; ///< all but comments blanked out

    bool isCpp() const;
    bool isBelow(const char *folder) const;
};

/// Only C++ is split; in any other file every line counts as code and as comment.
SourceText sourceText(const QString &path, const QString &text);

/// A function's body, found by layout alone: from an opening brace on a line of its own after a
/// parameter list to the closing brace with the same indentation.
struct FunctionBody
{
    int line = 0;   ///< of its opening brace, from 1
    int length = 0; ///< lines, both braces included
};

QList<FunctionBody> functionBodies(const SourceText &source);
