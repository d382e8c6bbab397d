#pragma once

#include "platform/files/FolderListing.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "slices/plan/CleaningReportBuilder.h"
#include "slices/plan/Protection.h"
#include "slices/removal/AsideSlot.h"
#include "slices/removal/FolderWay.h"
#include "slices/removal/LaterChanges.h"
#include "slices/removal/LeftAside.h"
#include "slices/removal/LentRights.h"
#include "slices/removal/LinkedFiles.h"

class SystemCalls;

/// What happens to the entries of a folder that is being emptied.
enum class EntryPolicy {
    Removed, ///< all go
    Logged,  ///< the same, with a log line each
};

/// Whether the names in a folder are still those that stood there when the user confirmed.
enum class FolderState { Unchanged, Changed };

/// An entry of an open folder.
struct EntryRef
{
    int folder = -1;
    const QByteArray &folderPath; ///< raw, with a trailing slash; for reports and judgements only
    const char *name = nullptr;
    FolderState around = FolderState::Changed; ///< of `folder`, when it was listed
    AsideSlot *slot = nullptr;                 ///< of the calling thread, for files of `folder`

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
    FolderState state = FolderState::Changed;
    LentRights rights = {}; ///< changed for the cleaning; before the descriptor at the end
};

/// Says which other item a file belongs to, as a path relative to the file's folder; nothing for
/// most. The file stays for as long as that item is there.
using ItemOfFile = QByteArray (*)(const QByteArray &name);

/// What the steps of a removal have in common with others; all outlive them.
struct RemovalContext
{
    const CleaningLocation &location;
    const Protection &protection; ///< of the location
    const LaterChanges &changes;  ///< of the location
    LinkedFiles &linkedFiles;     ///< of the cleaning
    CleaningReportBuilder &builder;
    ItemOfFile itemOf = nullptr;
    AsideNames *asideNames = nullptr; ///< of the cleaning
};

/// The single steps of a removal, and the only place in the program that unlinks. Every step works
/// on an open folder and one name in it, and itself reports what it could not do. Shared by the
/// threads of a cleaning.
///
/// Looks at each entry right before its removal. What has changed since the user confirmed stays.
/// So does a folder that may have come to its place since then: one that has changed itself, in a
/// folder whose entries have changed too.
class RemovalSteps final
{
public:
    RemovalSteps(const SystemCalls &calls, const RemovalContext &context, EntryOrder order,
                 LeftAside &leftAside)
        : m_calls(calls),
          m_location(context.location),
          m_protection(context.protection),
          m_changes(context.changes),
          m_linkedFiles(context.linkedFiles),
          m_builder(context.builder),
          m_itemOf(context.itemOf),
          m_asideNames(context.asideNames),
          m_order(order),
          m_leftAside(leftAside)
    {
    }

    enum class EntryOutcome {
        Gone,
        Stays,
        Enter, ///< a folder whose entries have to go first
    };

    /// A slot for the files of one folder after the other.
    AsideSlot slot(AsideSlot::FolderUse use) const { return {m_calls, m_asideNames, use}; }
    /// Removes the last file in the slot: Gone, or Stays with a report. After the last entry of a
    /// folder, and while the folder is open.
    EntryOutcome emptySlot(AsideSlot &slot, const QByteArray &folderPath) const;

    /// Handles an entry as it was listed: removes what is no folder, unless it is kept.
    EntryOutcome deal(const EntryRef &ref, const FolderListing::Entry &entry,
                      EntryPolicy policy) const;
    struct Judgement
    {
        ExclusionMatch match = ExclusionMatch::Whole;
        FileKind kind = FileKind::Unknown;
    };
    /// Says how much of an entry is kept by its path or its inode number, and does nothing.
    Judgement judge(const EntryRef &ref, const FolderListing::Entry &entry) const;

    /// Opens a folder that deal() said to enter; Gone or Stays where it cannot be entered. `space`
    /// is the calling thread's own.
    tl::expected<EnteredFolder, EntryOutcome>
    enter(const EntryRef &ref, const FolderListing::Entry &entry, std::span<char> space) const;
    /// Whether an open folder's names are still those of the confirmation. To be asked after its
    /// listing, and before anything of it is removed.
    FolderState stateOf(int folder) const;

    /// Lists a folder to its end, in the order of this cleaning.
    SystemResult<FolderListing> list(int folder, std::span<char> space) const;

    /// Opens the folder around an open one, which must have this inode number.
    SystemResult<FileDescriptor> back(int folder, std::uint64_t inode) const;
    /// Opens a folder again that was entered, from the folder around it.
    SystemResult<FileDescriptor> reenter(const EntryRef &ref, std::uint64_t inode) const;

    /// Whether an open folder still lies in the location: `inside` are the inode numbers of the
    /// folders around it, from the inside out; `around` goes on from there, nothing for the
    /// location itself. What cannot be looked at is no longer there, unless only this process lacks
    /// something for the look: a confined thread may not open what took the location's place.
    bool isInPlace(int folder, std::span<const std::uint64_t> inside,
                   const FolderWay *around) const;

    /// Removes a folder that was entered and should be empty by now. It has its rights back
    /// already, because someone may have moved it elsewhere meanwhile.
    EntryOutcome removeFolder(const EntryRef &ref, std::uint64_t inode, LentRights &rights) const;

    /// Reports a folder that did not get its rights back. Forgets them.
    void tellOfRights(const EntryRef &ref, LentRights &rights) const noexcept;

    /// Reports a folder that was entered but to which there is no way back, with all that is left
    /// in it.
    void abandon(const QByteArray &path, int error) const;
    /// Reports a folder, by its path with a slash at the end, of which something is left because
    /// the memory ran out.
    void ranOutOfMemory(const QByteArray &folderPath) const noexcept;

private:
    LentRights makeWritable(const EntryRef &ref, int folder, const FileStatus &status,
                            const FolderListing &listing) const;
    bool mayMakeWritable(const EntryRef &ref, const FileStatus &status,
                         const FolderListing &listing) const;
    EntryOutcome removeFile(const EntryRef &ref) const;
    EntryOutcome removeLinkedFile(const EntryRef &ref) const;
    tl::expected<FileStatus, EntryOutcome> fileAt(const EntryRef &ref) const;
    bool isNeeded(const EntryRef &ref) const;
    SystemResult<FileDescriptor> ifSame(SystemResult<FileDescriptor> folder,
                                        std::uint64_t inode) const;
    SystemResult<void> takeAway(const EntryRef &ref, const FileStatus &status) const;
    EntryOutcome putBack(const EntryRef &ref) const;
    bool leadsTo(int folder, std::span<const std::uint64_t> inside, const FolderWay *around) const;
    bool locationStands() const;
    bool leadsToUnseen(int folder, std::span<const std::uint64_t> above) const;
    EntryOutcome settled(const SystemResult<void> &answer, const EntryRef &ref) const;
    EntryOutcome refused(const EntryRef &ref, RefusalReason reason, int error) const;
    tl::expected<FileKind, EntryOutcome> kindOf(const EntryRef &ref,
                                                const FolderListing::Entry &entry) const;

    const SystemCalls &m_calls;
    const CleaningLocation &m_location;
    const Protection &m_protection;
    const LaterChanges &m_changes;
    LinkedFiles &m_linkedFiles;
    CleaningReportBuilder &m_builder;
    ItemOfFile m_itemOf;
    AsideNames *m_asideNames;
    EntryOrder m_order;
    LeftAside &m_leftAside;
};

/// Why a folder could not be opened, by the errno. It was a folder when it was found.
RefusalReason refusalReason(int error);
