#pragma once

#include "slices/home/HomeLayout.h"
#include "slices/probe/HomeProbe.h"

/// A program that was found in a home, with its own files there, as paths relative to the home.
struct FoundProgram
{
    QString program;
    ProgramLock lock;
    QByteArrayList files; ///< what may be removed, and exists
    /// Its caches, which need not exist: a name stands for a folder among the caches of all
    /// programs, a path with a slash for a folder of the program's own.
    QByteArrayList caches;
    QByteArrayList profiles = {}; ///< everything else in a profile is the user's
};

/// Finds the browsers and the mail programs of a freedesktop home that would lose something if they
/// were cleaned while they run.
///
/// Their files are the cookies, the history and the form entries of every profile of the browsers
/// that are known well. Each database comes before its journals: a program that finds a journal
/// without its database throws the journal away, but a database without its journal may be broken.
/// Bookmarks and passwords, and files that also hold them, are not among the files. Of all other
/// programs only caches are known. Programs that have no lock, or may have it elsewhere, are
/// recognised by their processes.
std::vector<FoundProgram> findPrograms(const HomeProbe &home);

/// The database to which a journal of this name belongs; empty for a name that is no journal's.
QByteArray databaseOfJournal(const QByteArray &name);
