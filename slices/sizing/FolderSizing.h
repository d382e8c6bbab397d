#pragma once

#include "platform/files/FileAccess.h"
#include "slices/sizing/ReadOnlyFolders.h"

#include <QByteArrayList>
#include <optional>
#include <stop_token>

class SystemCalls;

/// The judgement on a single item that is no folder.
struct ItemVerdict
{
    bool isDeletable = false;    ///< its folder lets this process remove it
    bool isNotImmutable = false; ///< no attribute forbids it
};

/// What a measurement found.
struct FolderSize
{
    qint64 bytes = 0; ///< what cleaning would free; stops at the largest number
    qint64 items = 0; ///< everything seen beneath the folder, counted or not, hidden items not
    bool isComplete = true; ///< false when stopped early or when something could not be read
    std::optional<ItemVerdict> item; ///< of a single item; nothing for a folder
};

/// What a measure of a location takes into account besides the rights of the items there.
struct SizingRules
{
    /// A folder inside that is the user's own and read-only counts as the cleaning will treat it.
    ReadOnlyFolders readOnlyFolders = ReadOnlyFolders::Stay;
    /// What a cleaning will keep inside, as raw paths relative to the location: neither these items
    /// nor what lies below them count.
    QByteArrayList kept = {};
};

/// Those of the URLs that lie inside the location, as raw paths relative to it.
QByteArrayList pathsInside(const FileUrl &location, const FileUrls &urls);

/// Measures what this process could delete at a location. In a folder it sums up the sizes of all
/// items that are no folders, are not hidden nor beneath a hidden folder (the location itself may
/// be hidden), may be removed from the folder that holds them, and are neither immutable nor
/// append-only. Links count with their own size. Mount points are not entered.
///
/// A location that is no folder is judged by the same rules and counts its own size. A missing
/// item, a dangling link, and a link to a folder count 0. Unreadable folders are passed over. The
/// result is also 0 when the location is a mount, or a mount lies between the anchor and it: a
/// cleaning refuses such a location. Only the anchor may be a mount.
///
/// Any thread but the main one; blocks until done or stopped. Uses up to `threads` threads; 0 means
/// as many as are useful.
FolderSize measureFolder(const SystemCalls &calls, const AnchoredPath &location,
                         const std::stop_token &stop, unsigned threads = 0,
                         const SizingRules &rules = {});

/// Whether measureFolder() would count a single item, whatever its size. Enters no folder; false
/// for what is not there. Not for the main thread.
bool mayBeDeleted(const SystemCalls &calls, const AnchoredPath &item);

/// The one size measure of the program, in bytes: measureFolder() of a URL in the granted folder,
/// within one access of its own. 0 for what lies elsewhere. Writes "%d : %d" to the log for a
/// single item: whether it may be deleted, and whether it is not immutable.
qint64 sizeForFolderAtPath(const SystemCalls &calls, FileAccess &access, const FileUrl &url,
                           const std::stop_token &stop = {}, const SizingRules &rules = {});
