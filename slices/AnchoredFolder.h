#pragma once

#include "platform/SystemCalls.h"
#include "slices/FileAccess.h"

/// An anchored path taken apart: the open folder that holds the item, and the item's name in it.
struct AnchoredItem
{
    FileDescriptor parent;
    QByteArray name;
};

/// Opens the folder at an anchored path. No component may be a link; mounts may be crossed on the
/// way, for this is a folder that somebody named. The path may be longer than the system takes at
/// once. A path that holds a NUL byte is refused with EINVAL.
SystemResult<FileDescriptor> openAnchoredFolder(const SystemCalls &calls, const AnchoredPath &path);

/// Opens the folder that holds the item at an anchored path, under the same rules; the item itself
/// need not exist. EINVAL for the anchor itself, whose parent is not ours to open.
SystemResult<AnchoredItem> openParentOfAnchored(const SystemCalls &calls, const AnchoredPath &path);
