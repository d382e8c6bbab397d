#pragma once

#include <QByteArray>

/// Whether the folder "logs" at this path, relative to the home, belongs to a program that keeps
/// conversations there: what its user wrote and received, no trace of the program's own work. The
/// names on the path decide, also parts of them. In doubt the folder holds conversations.
bool isChatLogFolder(const QByteArray &path);
