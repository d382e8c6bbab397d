#pragma once

#include "platform/walk/WalkedFolder.h"

/// How much of a folder's entries a visitor wants to know.
enum class EntryDetail { Status, NameAlone };

/// A folder that is about to be listed.
struct EnteredFolder
{
    const WalkedFolder &folder; ///< to be kept no longer than the call
    const FileStatus &status;
    int descriptor; ///< lent for the call
};

/// Something found that is no folder.
struct WalkedEntry
{
    const WalkedFolder &folder; ///< where it lies; to be kept no longer than the call
    const char *name;
    const FileStatus *status; ///< null when the folder was entered for EntryDetail::NameAlone
};

/// Gets everything that one thread of a walk finds; every call comes from that thread. Calls must
/// not throw.
class DirectoryVisitor
{
public:
    virtual ~DirectoryVisitor() = default;

    /// Whether to enter a subfolder; only its name is known. Not called for the start of the walk.
    virtual bool shouldEnter(const WalkedFolder &parent, const char *name);

    /// A folder was entered: called once for each folder, before anything is found in it. When this
    /// returns EntryDetail::NameAlone, the folder's entries come without status, which saves a
    /// system call for each.
    virtual EntryDetail entered(const EnteredFolder &entered);

    /// An entry that is no folder. Links are found, never followed. It may lie in a folder that the
    /// visitor of another thread has entered.
    virtual void found(const WalkedEntry &entry) = 0;

    /// Something was passed over: an entry whose status cannot be had, a subfolder that cannot be
    /// opened, or, with an empty name, the rest of the folder itself. `error` is an errno. Entries
    /// that vanished in the meantime, and mount points, are no failures and are not reported.
    virtual void failed(const WalkedFolder &folder, const char *name, int error);

    /// The first of these cases alone: an entry was listed, but its status cannot be had. Calls
    /// failed() unless overridden.
    virtual void statusFailed(const WalkedFolder &folder, const char *name, int error);
};
