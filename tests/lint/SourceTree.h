#pragma once

#include "tests/lint/House.h"

/// The files of this repository that people write. Read again at each call.
QStringList sourcePaths();
QString sourceFile(const QString &path);
/// The C++ of the program, without tests and bench.
QList<SourceText> productSources();
/// The rooms that the folders' CMake lists declare.
QList<Room> declaredRooms();
