#pragma once

#include <QStringList>

/// What a command of the bench returns to the shell.
enum ExitCode { kDone = 0, kFailed = 1, kUsageError = 2 };

/// `size PATH...`: measures each place and prints one JSON object a line.
int runSizeCommand(const QStringList &arguments);
