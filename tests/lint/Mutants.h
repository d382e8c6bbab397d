#pragma once

#include <QString>
#include <QStringList>

/// A bug to plant, as a block of a table in tests/mutants describes it. A value.
struct Mutant
{
    QString table; ///< the file of the table
    QString name;
    QString file;       ///< where it is planted, from the top of the repository
    QString test;       ///< that must notice it, by its name in ctest: "app/pages/tst_Page"
    QString equivalent; ///< why no test can notice it
    QStringList old;    ///< the lines that it replaces
    QStringList planted;
    QStringList notUnderstood;

    /// How often the lines to replace occur in this text. Indentation does not count, as in
    /// scripts/mutants.
    qsizetype occurrencesIn(const QString &text) const;
};

/// The blocks of a table, in its order.
QList<Mutant> mutantsOfTable(const QString &path, const QString &text);
/// What is wrong with a row by itself, without a look at the tree: "table: name: reason".
QStringList faultsOf(const Mutant &mutant);
/// Names that more than one row has.
QStringList repeatedNames(const QList<Mutant> &mutants);
