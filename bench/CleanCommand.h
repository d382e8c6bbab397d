#pragma once

#include <QStringList>

/// `clean PATH... [--exclude URL]... --yes`: removes for good what lies in the folders (or the very
/// files) named, just as the program does, and prints one JSON object a path. Does nothing without
/// --yes. Returns 0, 1 when something could not be removed, or 2 for a call that it refuses.
int runClean(const QStringList &arguments);
