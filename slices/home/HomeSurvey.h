#pragma once

#include "platform/files/FileAccess.h"
#include "slices/home/HomeEnvironment.h"
#include "slices/home/HomeLayout.h"

#include <stop_token>

class SystemCalls;

/// How the granted home is laid out. Library for a home that holds a real folder "Library", not a
/// link to one, and for every home of a system where all homes have one; also for a home without
/// access, since then nothing is there at all. Unknown when the home does not answer: neither
/// layout may be taken for the other. Costs one status call; any thread. The caller holds the
/// access.
HomeKind homeKind(const SystemCalls &calls, const FileAccess &access, const FileUrl &home);

/// Looks at the home and finds where everything is, see HomeLayout. Reads the names of a few dozen
/// folders: not for the main thread. The caller holds the access.
///
/// Everything found lies strictly below the home, with no link on the way, and no location lies in
/// another. The layout is unknown, without any location, when homeKind() is unknown and when the
/// survey was stopped.
HomeLayout surveyHome(const SystemCalls &calls, const FileAccess &access, const FileUrl &home,
                      const HomeEnvironment &environment, const std::stop_token &stop = {});
