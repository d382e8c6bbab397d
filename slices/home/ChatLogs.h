#pragma once

#include <QByteArray>

/// Whether the folder "logs" at this path, relative to the home, belongs to a program that keeps
/// conversations there: what its user wrote and was written to, no trace of the program's own work.
/// Judged by the names on the path, also by parts of them: in doubt they are conversations.
bool isChatLogFolder(const QByteArray &path);
