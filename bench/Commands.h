#pragma once

#include <QStringList>

/// What a command of the bench returns to the shell.
enum ExitCode { kDone = 0, kFailed = 1, kUsageError = 2 };

/// `size PATH...`: measures each place and prints one JSON object a line.
int runSizeCommand(const QStringList &arguments);

/// `search HOME`: searches a home's main folders for large files, just as the program does, and
/// prints one JSON object.
int runSearchCommand(const QStringList &arguments);

/// `clean PATH... [--exclude URL]... --yes`: measures each place, removes for good what lies in the
/// folders (or the very files) named, just as the program does, and prints one JSON object a path;
/// `seconds` is the removal's alone. Does nothing without --yes.
int runCleanCommand(const QStringList &arguments);

/// `trees FOLDER`: makes the three trees by which the engines are measured, "cache", "flat" and
/// "deep", in a folder that holds none of these names.
int runTreesCommand(const QStringList &arguments);
