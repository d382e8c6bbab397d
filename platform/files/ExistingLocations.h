#pragma once

#include "platform/files/FileAccess.h"

#include <stop_token>

class SystemCalls;

/// Returns those of the given locations that exist, in order, links included. A location below the
/// granted folder is never looked up through a link. Waits for the disk: not for the main thread.
/// Ends early, with what it has found, once `stop` says so.
FileUrls existingLocations(const SystemCalls &calls, FileAccess &access, const FileUrls &locations,
                           const std::stop_token &stop);
