#pragma once

#include "platform/files/FolderListing.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "slices/plan/CleaningReportBuilder.h"
#include "slices/plan/Protection.h"

#include <optional>

class SystemCalls;

/// What happens to the entries of a folder that is being emptied.
enum class EntryPolicy {
    Removed, ///< all go; nothing that is kept lies below by its path
    Logged,  ///< the same, with a log line each
    Judged,  ///< each is judged by its path, and those that go are logged
};

/// An entry of an open folder.
struct EntryRef
{
    int folder;
    const QByteArray &folderPath; ///< raw, with a trailing slash; for reports and judgements only
    const char *name;

    QByteArray path() const { return folderPath + name; }
};

/// In which order a folder's entries are dealt with.
enum class EntryOrder { AsListed, ByInode };

/// A folder that was opened, found to be what it should be, and listed to its end.
struct EnteredFolder
{
    FileDescriptor descriptor;
    std::uint64_t inode = 0;
    FolderListing listing;
    /// The rights that the folder had before the cleaning changed them; nothing where nothing was
    /// changed.
    std::optional<std::uint16_t> formerRights;
};

/// The single steps of a removal, and the only place in the program that unlinks. Every step works
/// on an open folder and one name in it, and itself reports what it could not do. Shared by the
/// threads of a cleaning.
class RemovalSteps final
{
public:
    RemovalSteps(const SystemCalls &calls, const Protection &protection,
                 CleaningReportBuilder &builder, EntryOrder order)
        : m_calls(calls), m_protection(protection), m_builder(builder), m_order(order)
    {
    }

    enum class EntryOutcome {
        Gone,
        Stays,
        Enter, ///< a folder whose entries have to go first
    };
    struct Verdict
    {
        EntryOutcome outcome = EntryOutcome::Stays;
        EntryPolicy inside = EntryPolicy::Removed; ///< for a folder to enter
    };

    /// Handles an entry as it was listed: removes what is no folder, unless it is kept.
    Verdict deal(const EntryRef &ref, const FolderListing::Entry &entry, EntryPolicy policy) const;

    /// Opens a folder that deal() said to enter; Gone or Stays where it cannot be entered. `space`
    /// is the calling thread's own.
    tl::expected<EnteredFolder, EntryOutcome> enter(const EntryRef &ref,
                                                    std::span<char> space) const;

    /// Lists a folder to its end, in the order of this cleaning.
    SystemResult<FolderListing> list(int folder, std::span<char> space) const;

    /// Opens the folder around an open one, which must have this inode number.
    SystemResult<FileDescriptor> back(int folder, std::uint64_t inode) const;

    /// Gives a folder back the rights that enter() changed: before its removal, because someone may
    /// have moved it elsewhere meanwhile, and also where something stays in it.
    void giveBack(int folder, std::optional<std::uint16_t> formerRights) const;

    /// Removes a folder that should be empty by now.
    EntryOutcome removeFolder(const EntryRef &ref) const;

    /// Reports a folder that was entered but to which there is no way back, with all that is left
    /// in it.
    void abandon(const QByteArray &path, int error) const;

private:
    std::optional<std::uint16_t> makeWritable(const EntryRef &ref, int folder,
                                              const FileStatus &status,
                                              const FolderListing &listing) const;
    bool mayMakeWritable(const EntryRef &ref, const FileStatus &status,
                         const FolderListing &listing) const;
    EntryOutcome removeFile(const EntryRef &ref) const;
    EntryOutcome settled(const SystemResult<void> &answer, const EntryRef &ref) const;
    EntryOutcome refused(const EntryRef &ref, RefusalReason reason, int error) const;
    tl::expected<FileKind, EntryOutcome> kindOf(const EntryRef &ref,
                                                const FolderListing::Entry &entry) const;

    const SystemCalls &m_calls;
    const Protection &m_protection;
    CleaningReportBuilder &m_builder;
    EntryOrder m_order;
};

/// Why a folder could not be opened, by the errno. It was a folder when it was found.
RefusalReason refusalReason(int error);
