#pragma once

#include "platform/files/FileAccess.h"
#include "slices/home/HomeEnvironment.h"
#include "slices/home/HomeLayout.h"

#include <stop_token>

class SystemCalls;

/// Whether one look shows that a home has the layout with a Library: it holds a real folder
/// "Library", not a link to one, with the folder of caches in it. True on a system where all homes
/// have one; also without access, since then nothing is there at all. False tells nothing yet: see
/// surveyHome(). Costs no more than two status calls; any thread. The caller holds the access.
bool hasPlainLibrary(const SystemCalls &calls, const FileAccess &access, const FileUrl &home);

/// Looks at the home and finds where everything is, see HomeLayout. Reads the names of a few dozen
/// folders: not for the main thread. The caller holds the access.
///
/// A home has the layout with a Library when at least one of the slices' locations is in a real
/// folder of that name: people give folders of their own any name.
///
/// Everything found lies strictly below the home, with no link on the way, and no location lies in
/// another. The layout is unknown, without any location, when the home does not answer, because
/// neither layout may be taken for the other, and when the survey was stopped.
HomeLayout surveyHome(const SystemCalls &calls, const FileAccess &access, const FileUrl &home,
                      const HomeEnvironment &environment, const std::stop_token &stop = {});
