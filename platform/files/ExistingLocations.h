#pragma once

#include "platform/files/FileAccess.h"

#include <stop_token>

class SystemCalls;

/// Those of these locations that are there, in order, links included; none below the granted folder
/// is looked for through a link. Waits for the disk: not for the main thread. Ends early, with what
/// it has, once `stop` says so.
FileUrls existingLocations(const SystemCalls &calls, FileAccess &access, const FileUrls &locations,
                           const std::stop_token &stop);
