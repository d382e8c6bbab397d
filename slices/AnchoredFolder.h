#pragma once

#include "platform/SystemCalls.h"
#include "slices/FileAccess.h"

/// An entry of a folder below an anchor.
struct AnchoredEntry
{
    AnchoredPath folder;
    QByteArray name;
};

/// The folder around a path that is not the anchor itself, and the path's last name.
AnchoredEntry anchoredEntry(const AnchoredPath &path);

/// Opens the folder at an anchored path, the anchor itself included.
SystemResult<FileDescriptor> openAnchored(const SystemCalls &calls, const AnchoredPath &path,
                                          Descent descent);
