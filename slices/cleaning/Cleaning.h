#pragma once

#include "slices/cleaning/CleaningReport.h"

#include <functional>
#include <stop_token>

class SystemCalls;

/// What is in use at and inside a place, which is the location or lies in it. Asked right before
/// the place's turn, on the thread that cleans.
using InUseCheck = std::function<FileUrls(const CleaningLocation &, const FileUrl &entry)>;

/// Removes for good what the plan says and nothing else: never through a link, never on another
/// file system, never anything excluded, and nothing of a folder that could not be listed wholly.
/// Rights are never changed, but for read-only folders inside a place whose plan says so, which are
/// the user's own, and have them back where they stay. A place that is in use when its turn comes
/// stays, and so does what is in use inside it: what a folder holds at, or on the way to, the
/// places of programs has a turn of its own, after all else. Goes on after a failure; looks at the
/// stop token before every item. Runs on the caller's thread, with a second one where the disk
/// gains by it, and writes the log lines of the cleaning. Blocks: not for the main thread.
CleaningReport performCleaning(const SystemCalls &calls, const CleaningPlan &plan,
                               std::stop_token stop, const InUseCheck &inUse = {});
