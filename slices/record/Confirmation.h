#pragma once

#include "platform/files/FileAccess.h"
#include "platform/system/FileStatus.h"
#include "platform/system/Moment.h"

#include <QHash>
#include <stop_token>

class SystemCalls;

/// What stood at some locations, by their raw paths. One that was not there, or that could not be
/// looked at, has no entry.
using LocationIdentities = QHash<QByteArray, FileIdentity>;

/// Looks at the locations, however many, so not for the main thread; the caller holds the access.
/// Ends early when it is stopped.
LocationIdentities lookAtLocations(const SystemCalls &calls, const FileAccess &access,
                                   const FileUrls &locations, const std::stop_token &stop = {});

/// The user's consent to a cleaning, or the choice of single files for one.
struct Confirmation
{
    Moment moment; ///< what has changed since then stays
    /// What stood at the locations then. Anything else there now stays.
    LocationIdentities locations;
};
