#pragma once

#include "slices/HomeLayout.h"
#include "slices/HomeReader.h"

/// A program's files as they are found in a home, by paths relative to it.
struct FoundProgram
{
    QString program;
    ProgramLock lock;
    QByteArrayList paths;
    QByteArray cache; ///< the folder with its cache, which may be missing
};

/// The cookies, the history and the form entries of every browser profile of a freedesktop home:
/// single files that are there, each database before its journals, for a journal without its
/// database is thrown away by whoever opens it next, while a database without its journal may be
/// broken. Bookmarks and passwords, and whatever holds them besides, are not among them.
std::vector<FoundProgram> browserFiles(const HomeReader &home);

/// The database to which a journal of this name belongs; empty for what is no journal.
QByteArray databaseOfJournal(const QByteArray &name);
