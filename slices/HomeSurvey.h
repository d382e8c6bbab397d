#pragma once

#include "platform/SystemCalls.h"
#include "slices/FileAccess.h"
#include "slices/HomeLayout.h"

/// What the environment says about where programs keep things. It may add a trash and a cache, if
/// they are below the home and look like one; it can change nothing else.
struct HomeEnvironment
{
    QByteArray dataHome;  ///< XDG_DATA_HOME
    QByteArray cacheHome; ///< XDG_CACHE_HOME

    static HomeEnvironment ofThisProcess();
};

/// Whether the granted home has the fixed layout: it holds a folder "Library" itself, no link to
/// one, or the system is one where all homes do. Also when there is no access to it, for then
/// nothing is there at all. Costs one status call; any thread. The caller holds the access.
bool hasLibrary(const SystemCalls &calls, const FileAccess &access, const FileUrl &home);

/// Looks at the home and finds where everything is, see HomeLayout. Reads the names of a few dozen
/// folders: not for the main thread. The caller holds the access.
///
/// Whatever is found lies strictly below the home, with no link on the way, and no location lies in
/// another.
HomeLayout surveyHome(const SystemCalls &calls, const FileAccess &access, const FileUrl &home,
                      const HomeEnvironment &environment);
