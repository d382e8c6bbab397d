#pragma once

#include "platform/walk/WalkedFolder.h"

/// How much of a folder's entries a visitor wants to know.
enum class EntryDetail { Status, NameAlone };

/// Something found that is no folder.
struct WalkedEntry
{
    const WalkedFolder &folder; ///< where it lies; to be kept no longer than the call
    const char *name;
    const FileStatus *status; ///< null when the folder was entered for EntryDetail::NameAlone
};

/// Is told what one thread of a walk comes across; every call comes from that thread. Calls must
/// not throw.
class DirectoryVisitor
{
public:
    virtual ~DirectoryVisitor() = default;

    /// A subfolder, by its name alone; whether to enter it. Not asked for the start of the walk.
    virtual bool shouldEnter(const WalkedFolder &parent, const char *name);

    /// A folder was entered: told once a folder, before anything is found in it. The descriptor is
    /// only lent for the call. Where the answer is EntryDetail::NameAlone its entries come without
    /// status, which spares a system call each.
    virtual EntryDetail entered(const WalkedFolder &folder, int descriptor);

    /// An entry that is no folder. Links are found, never followed. May be told of an entry of a
    /// folder that the visitor of another thread has entered.
    virtual void found(const WalkedEntry &entry) = 0;

    /// Something was passed over: an entry whose status cannot be had, a subfolder that cannot be
    /// opened, or, with an empty name, the rest of the folder itself. `error` is an errno. What
    /// merely vanished meanwhile, and mount points, are no failures and are not told.
    virtual void failed(const WalkedFolder &folder, const char *name, int error);

    /// The first of these cases by itself: an entry was listed, but its status cannot be had. Says
    /// failed() unless told otherwise.
    virtual void statusFailed(const WalkedFolder &folder, const char *name, int error);
};
