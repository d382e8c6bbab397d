#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/FileStatus.h"
#include "platform/walk/DirectoryVisitor.h"
#include "platform/walk/WalkOptions.h"

#include <span>
#include <stop_token>

class SystemCalls;

/// The number of threads from which walking gains: one for each processor, four at most.
unsigned usefulWalkThreads();

/// Walks everything beneath an open folder and returns when all is seen or a stop was requested,
/// which it heeds at every entry. Uses the caller's thread and, as soon as there is work to share,
/// one more for each further visitor (at least one is needed): a visitor hears one thread only, and
/// several hear at the same time. The order is any.
///
/// Every entry's status is asked for at most once. Links are not followed, other file systems and
/// mount points not entered, nothing is looked up by a path: the walk goes from descriptor to
/// descriptor, so that neither the depth nor what others move about meanwhile leads it astray.
void walkDirectory(const SystemCalls &calls, FileDescriptor start, const WalkOptions &options,
                   std::stop_token stop, std::span<DirectoryVisitor *const> visitors);
