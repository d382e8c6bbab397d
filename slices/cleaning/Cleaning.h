#pragma once

#include "slices/plan/CleaningReport.h"

#include <functional>
#include <stop_token>

class AsideNames;
class SystemCalls;

/// Finds what is in use at and inside an entry, which is the location or lies in it. Asked right
/// before the cleaning comes to the entry, on the thread that calls performCleaning().
using InUseCheck = std::function<FileUrls(const CleaningLocation &, const FileUrl &entry)>;

/// Removes for good what the plan says and nothing else: never through a link, never on another
/// file system, never anything excluded, and nothing of a folder that could not be listed wholly.
/// Never changes rights, with one exception: read-only folders that are the user's own, inside a
/// location whose plan says so. Those that stay get their rights back. A location that is in use
/// when the cleaning comes to it stays, and so does what is in use inside it. For this the entries
/// at, or on the way to, the locations of programs come last, each by itself. Goes on after a
/// failure, with the next location also when the memory runs out; looks at the stop token before
/// every item. Runs on the caller's thread, with a second
/// one where the disk gains by it, and writes the log lines of the cleaning. Blocks: not for the
/// main thread.
CleaningReport performCleaning(const SystemCalls &calls, const CleaningPlan &plan,
                               std::stop_token stop, const InUseCheck &inUse = {},
                               AsideNames *asideNames = nullptr);
