#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/FileStatus.h"

#include <QByteArray>

/// Opens a folder by its absolute path, which holds no link. Ends the test where that fails.
FileDescriptor openedFolder(const QByteArray &path);
/// What an entry of an open folder is. Ends the test where it is not there.
FileStatus statusIn(int folder, const char *name);
