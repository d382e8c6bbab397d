#pragma once

#include <QString>
#include <QStringList>

/// One file of the repository, split into what rules look at. All three have the same lines, so
/// that a line number means the same in each. A value.
struct SourceText
{
    QString path;         ///< from the top of the repository, "chart/PieChart.cpp"
    QStringList lines;    ///< as written
    QStringList code;     ///< comments and the insides of literals blanked out
    QStringList comments; ///< all but comments blanked out

    bool isCpp() const;
    bool isBelow(const char *folder) const;
};

/// Only C++ is taken apart; of any other file every line counts as code and as comment.
SourceText sourceText(const QString &path, const QString &text);

/// A function's body as far as layout tells it: an opening brace on a line of its own after a
/// parameter list, up to the closing one at the same depth of indentation.
struct FunctionBody
{
    int line = 0;   ///< of its opening brace, from 1
    int length = 0; ///< lines, both braces included
};

QList<FunctionBody> functionBodies(const SourceText &source);
