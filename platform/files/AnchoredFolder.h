#pragma once

#include "platform/files/FileAccess.h"
#include "platform/system/Descent.h"
#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"

class SystemCalls;

/// An entry of a folder below an anchor.
struct AnchoredEntry
{
    AnchoredPath folder;
    QByteArray name;
};

/// The folder around a path, and the path's last name. For the anchor itself, whose own folder is
/// not ours to open, the name is empty.
AnchoredEntry anchoredEntry(const AnchoredPath &path);

/// Opens the folder at an anchored path, the anchor itself included; no component may be a link.
/// The path may be longer than the system takes at once. One that holds a NUL byte is refused with
/// EINVAL.
SystemResult<FileDescriptor> openAnchored(const SystemCalls &calls, const AnchoredPath &path,
                                          Descent descent);

/// The status of what is at an anchored path, itself no link's; no component on the way may be one.
SystemResult<FileStatus> statusAnchored(const SystemCalls &calls, const AnchoredPath &path);

/// Opens without crossing mounts, and only on the anchor's own volume, where alone things are
/// measured, found and cleaned: a sub-volume, which opens like any folder, fails with EXDEV too.
SystemResult<FileDescriptor> openOnVolume(const SystemCalls &calls, const AnchoredPath &path);
