#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/FileStatus.h"
#include "platform/walk/DirectoryVisitor.h"
#include "platform/walk/WalkOptions.h"

#include <span>
#include <stop_token>

class SystemCalls;

/// The number of threads that make a walk faster: one for each processor, four at most.
unsigned usefulWalkThreads();

/// Walks everything beneath an open folder. Returns when all is seen or a stop was requested; it
/// looks for a stop at every entry. Uses the caller's thread and, as soon as there is work to
/// share, one more for each further visitor (at least one visitor is needed). One thread alone
/// calls each visitor; several visitors are called at the same time. The entries come in any order.
///
/// Every entry's status is asked for at most once, and where the file system lists to the end, a
/// folder that fits into one listing is listed once. Links are not followed, other file systems and
/// mount points are not entered, and nothing is looked up by a path. The walk goes from descriptor
/// to descriptor, so neither the depth nor a folder that is moved in the meantime can lead it to a
/// wrong folder.
void walkDirectory(const SystemCalls &calls, FileDescriptor start, const WalkOptions &options,
                   std::stop_token stop, std::span<DirectoryVisitor *const> visitors);
