#pragma once

#include "platform/system/ActingUser.h"
#include "platform/system/FileStatus.h"

/// What a cleaning does about a folder whose owner took away his own right to change it.
enum class ReadOnlyFolders {
    Stay,
    /// What the user threw away is emptied all the same: the folder gets the right back.
    Emptied,
};

/// Whether the folder is the user's own but does not let him take things out.
inline bool isOwnAndReadOnly(const FileStatus &folder, const ActingUser &user)
{
    constexpr unsigned kToTakeThingsOut = 0300; // write and search
    return folder.owner == user.user && (folder.permissions & kToTakeThingsOut) != kToTakeThingsOut;
}
