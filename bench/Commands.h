#pragma once

#include <QStringList>

/// What a command of the bench returns to the shell.
enum ExitCode { kDone = 0, kFailed = 1, kUsageError = 2 };

/// `size PATH...`: measures each location and prints one JSON object per line.
int runSizeCommand(const QStringList &arguments);

/// `walk [--threads N] FOLDER`: a bare walk, the yardstick for `size`. Prints one JSON object with
/// the same fields; the bytes are those of all entries, whatever their rights.
int runWalkCommand(const QStringList &arguments);

/// `search [--threads N] [--exclude URL]... [--exclusions N] [--list] HOME`: searches a home's main
/// folders for large files, just as the program does, and prints one JSON object. --exclusions
/// excludes that many folders more, which are not there. With --list the paths of the found files
/// come after the object, a line each.
int runSearchCommand(const QStringList &arguments);

/// `clean PATH... [--exclude URL]... --yes`: measures each location, deletes for good what lies in
/// the named folders (or the named files themselves), just as the program does, and prints one JSON
/// object per path. `seconds` is the time of the removal alone. Does nothing without --yes.
int runCleanCommand(const QStringList &arguments);

/// `growth FOLDER [ROW]`: prints how long the engines take for 10, 100, 1,000 and 10,000 of what a
/// home may have many of; only the rows whose names contain ROW. Makes its own files in a new
/// folder inside, and takes that away again.
int runGrowthCommand(const QStringList &arguments);

/// `trees [--share N] FOLDER`: makes the four trees with which the engines are measured, "cache",
/// "flat", "deep" and "home", or of each about the Nth part. The folder must not hold any of these
/// names. Nothing in them is hidden or linked twice, which other programs count differently.
int runTreesCommand(const QStringList &arguments);

/// `settings [--tutorial-declined] HOME FOLDER`: keeps settings in the folder as if the user had
/// granted the home in an earlier run, and had declined the tutorial or not.
int runSettingsCommand(const QStringList &arguments);
