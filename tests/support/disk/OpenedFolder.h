#pragma once

#include "platform/system/FileDescriptor.h"

#include <QByteArray>

/// Opens a folder by its absolute path, which holds no link. Ends the test where that fails.
FileDescriptor openedFolder(const QByteArray &path);
