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

/// The folder around a path, and the path's last name. For the anchor itself the name is empty,
/// because the folder around the anchor is not ours to open.
AnchoredEntry anchoredEntry(const AnchoredPath &path);

/// Opens the folder at an anchored path, the anchor itself included; no component may be a link.
/// The path may be longer than the system takes at once. One that holds a NUL byte is refused with
/// EINVAL.
SystemResult<FileDescriptor> openAnchored(const SystemCalls &calls, const AnchoredPath &path,
                                          Descent descent);

/// The status of the entry at an anchored path; for a link, the status of the link itself. No
/// component on the way may be a link.
SystemResult<FileStatus> statusAnchored(const SystemCalls &calls, const AnchoredPath &path);

/// Opens a folder without crossing mounts, and only on the anchor's own volume, because the program
/// measures, finds and cleans things only there. A sub-volume opens like any folder, but fails with
/// EXDEV here too.
SystemResult<FileDescriptor> openOnVolume(const SystemCalls &calls, const AnchoredPath &path);
