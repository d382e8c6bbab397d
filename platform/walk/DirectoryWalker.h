#pragma once

#include "platform/system/SystemCalls.h"
#include "platform/walk/WalkedFolder.h"

#include <span>
#include <stop_token>

/// Hidden is what has a name that begins with a full stop.
enum class HiddenItems { Skipped, Included };

/// Enough for all but the deepest trees, and few enough for all slices to be measured at once.
inline constexpr unsigned kWalkedFoldersOpen = 48;

struct WalkOptions
{
    HiddenItems hiddenItems = HiddenItems::Skipped;
    /// How many folders the whole walk may hold open at once; at least two a thread are taken.
    unsigned openFolders = kWalkedFoldersOpen;
};

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

/// The number of threads from which walking gains: one for each processor, four at most.
unsigned usefulWalkThreads();

/// Walks everything beneath an open folder and returns when all is seen or a stop was requested,
/// which it heeds at every entry. Uses the caller's thread and, as soon as there is work to share,
/// one more for each further visitor (at least one is needed): a visitor hears one thread only, and
/// several hear at the same time. The order is any.
///
/// Every entry's status is asked for at most once. Links are not followed, other file systems and
/// mount points not entered, nothing is looked up by a path: the walk goes from descriptor to
/// descriptor, so that neither the depth nor what others move about meanwhile leads it astray.
void walkDirectory(const SystemCalls &calls, FileDescriptor start, const WalkOptions &options,
                   std::stop_token stop, std::span<DirectoryVisitor *const> visitors);
