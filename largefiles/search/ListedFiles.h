#pragma once

#include "largefiles/search/CurrentSize.h"
#include "platform/files/FileAccess.h"
#include "platform/files/FileUrl.h"

#include <stop_token>

class SystemCalls;

// Questions about files that were found a while ago. Any thread but the main one; each holds one
// access of its own, and follows no link.

/// The files that are no longer there, or are something other than a file by now, in their order. A
/// file about which nothing can be found out counts as still there. Nothing when stopped.
FileUrls vanishedFiles(const SystemCalls &calls, FileAccess &access, const FileUrls &files,
                       const std::stop_token &stop);

/// The sizes of the files at present, in their order. Fewer when stopped.
QList<CurrentSize> currentSizes(const SystemCalls &calls, FileAccess &access, const FileUrls &files,
                                const std::stop_token &stop);
