#pragma once

#include "platform/files/FileAccess.h"
#include "platform/system/FileStatus.h"
#include "slices/exclusions/ExcludedPaths.h"

#include <vector>

class SystemCalls;

/// The excluded files and folders as the file system knows them. An exclusion keeps what it leads
/// to, also where its path goes through a link (a home that was moved, a granted home behind one)
/// or another mount, such as one that shows the home a second time. One that is itself a link keeps
/// the link and what that leads to. A value; any thread.
struct ResolvedExclusions
{
    /// One that could not be found.
    struct Lost
    {
        QByteArray path;
        int error = 0; ///< errno
        /// True when something is there but could not be looked at: it may be anything, anywhere.
        bool isHidden = false;
    };

    /// The given exclusions, and for each one that leads through links also its real path.
    ExcludedPaths paths;
    std::vector<FileIdentity> identities;
    std::vector<Lost> lost;
};

/// Looks for every exclusion, also outside the granted folder, so it may wait for slow volumes: not
/// for the main thread. The caller holds the access.
ResolvedExclusions resolveExclusions(const SystemCalls &calls, const FileAccess &access,
                                     const ExcludedPaths &excluded);
