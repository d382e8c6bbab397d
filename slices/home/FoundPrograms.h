#pragma once

#include "slices/home/HomeLayout.h"
#include "slices/home/HomeProbe.h"

/// A program that was found in a home, with what is its own there, by paths relative to the home.
struct FoundProgram
{
    QString program;
    ProgramLock lock;
    QByteArrayList files; ///< what may be removed, and is there
    /// Its caches, which need not be there: by its name in whatever folder holds the caches of all
    /// programs, or, with a slash, by the path of a folder that it has for itself.
    QByteArrayList caches;
    QByteArrayList profiles = {}; ///< all that a profile holds besides is the user's
};

/// The browsers and the mail programs of a freedesktop home that have something to lose while they
/// run.
///
/// Their files are the cookies, the history and the form entries of every profile of the browsers
/// that are known well: each database before its journals, for a journal without its database is
/// thrown away by whoever opens it next, while a database without its journal may be broken.
/// Bookmarks and passwords, and whatever holds them besides, are not among them. Of all other
/// programs nothing but caches is known, and those that have no lock, or may have it elsewhere,
/// are known by their processes.
std::vector<FoundProgram> findPrograms(const HomeProbe &home);

/// The database to which a journal of this name belongs; empty for what is no journal.
QByteArray databaseOfJournal(const QByteArray &name);
