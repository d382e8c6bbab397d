#pragma once

#include "platform/files/FileAccess.h"
#include "slices/home/HomeEnvironment.h"
#include "slices/home/HomeLayout.h"

#include <stop_token>

class SystemCalls;

/// How the granted home is laid out. The fixed layout has a home that holds a folder "Library"
/// itself, no link to one, and every home of a system where all homes do; also one that there is no
/// access to, for then nothing is there at all. Unknown where the home does not answer: neither
/// layout may be taken for the other. Costs one status call; any thread. The caller holds the
/// access.
HomeKind homeKind(const SystemCalls &calls, const FileAccess &access, const FileUrl &home);

/// Looks at the home and finds where everything is, see HomeLayout. Reads the names of a few dozen
/// folders: not for the main thread. The caller holds the access.
///
/// Whatever is found lies strictly below the home, with no link on the way, and no location lies in
/// another. Unknown, with no location at all, where homeKind() is, and when it was told to stop.
HomeLayout surveyHome(const SystemCalls &calls, const FileAccess &access, const FileUrl &home,
                      const HomeEnvironment &environment, const std::stop_token &stop = {});
