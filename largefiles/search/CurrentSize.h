#pragma once

#include "platform/system/FileStatus.h"

#include <QtGlobal>

/// What is known of one file and its size. A value.
struct CurrentSize
{
    qint64 bytes = 0; ///< 0 for what cannot be read
    /// Whether this process could remove the file, so that a cleaning would free the bytes.
    bool isDeletable = false;
    FileIdentity identity = {}; ///< the default for what cannot be read

    friend bool operator==(const CurrentSize &, const CurrentSize &) = default;
};
