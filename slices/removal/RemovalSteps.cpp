#include "slices/removal/RemovalSteps.h"

#include "platform/system/SystemCalls.h"
#include "slices/removal/AsideNames.h"
#include "slices/removal/ExactRemoval.h"

#include <cerrno>

namespace {

/// Whether this error of a look says nothing about what was looked at.
bool tellsNothing(int error)
{
    return error == EMFILE || error == ENFILE || error == ENOMEM || error == EAGAIN;
}

} // namespace

RefusalReason refusalReason(int error)
{
    switch (error) {
    case ELOOP:
    case ENOTDIR: // a link or a file has taken its place
        return RefusalReason::Changed;
    case EXDEV:
        return RefusalReason::OtherFileSystem;
    default:
        return RefusalReason::Unreadable;
    }
}

RemovalSteps::EntryOutcome
RemovalSteps::deal(const EntryRef &ref, const FolderListing::Entry &entry, EntryPolicy policy) const
{
    if (m_protection.keepsInode(entry.inode))
        return EntryOutcome::Stays;
    if (ExactRemoval::isPrivate(ref.name) || AsideNames::isPrivate(ref.name))
        return putBack(ref);
    const auto kind = kindOf(ref, entry);
    if (!kind)
        return kind.error();
    const bool isFolder = *kind == FileKind::Folder;
    if (policy != EntryPolicy::Removed && m_builder.announce())
        m_builder.logRemoval(ref.path(), isFolder ? FileUrlKind::Folder : FileUrlKind::File);
    return isFolder ? EntryOutcome::Enter : removeFile(ref);
}

RemovalSteps::Judgement RemovalSteps::judge(const EntryRef &ref,
                                            const FolderListing::Entry &entry) const
{
    if (m_protection.keepsInode(entry.inode))
        return {};
    const auto kind = kindOf(ref, entry);
    return kind ? Judgement{m_protection.match(ref.path(), *kind), *kind} : Judgement();
}

tl::expected<EnteredFolder, RemovalSteps::EntryOutcome>
RemovalSteps::enter(const EntryRef &ref, const FolderListing::Entry &entry,
                    std::span<char> space) const
{
    auto opened = m_calls.openFolder(ref.folder, ref.name, Descent::Strict);
    if (!opened)
        return tl::unexpected(refused(ref, refusalReason(opened.error()), opened.error()));
    // The descriptor's answers hold, whatever happens to the name from now on.
    const auto status = m_calls.statusOf(opened->get());
    if (!status)
        return tl::unexpected(refused(ref, RefusalReason::Unreadable, status.error()));
    if (status->device != m_protection.device())
        return tl::unexpected(refused(ref, RefusalReason::OtherFileSystem, EXDEV));
    if (m_protection.keepsInode(status->inode))
        return tl::unexpected(EntryOutcome::Stays);
    const bool wasThere = ref.around == FolderState::Unchanged && status->inode == entry.inode;
    if (!wasThere && m_changes.include(*status))
        return tl::unexpected(refused(ref, RefusalReason::ChangedLater, 0));
    auto listing = list(opened->get(), space);
    if (!listing)
        return tl::unexpected(refused(ref, RefusalReason::PartlyListed, listing.error()));
    const FolderState state = stateOf(opened->get());
    LentRights rights = makeWritable(ref, opened->get(), *status, *listing);
    return EnteredFolder{std::move(*opened), status->inode, std::move(*listing), state,
                         std::move(rights)};
}

FolderState RemovalSteps::stateOf(int folder) const
{
    const auto status = m_calls.statusOf(folder);
    return status && !m_changes.include(*status) ? FolderState::Unchanged : FolderState::Changed;
}

/// Uses the descriptor: the name may stand for another folder by now. Where the system refuses the
/// change, the removals inside fail and report it.
LentRights RemovalSteps::makeWritable(const EntryRef &ref, int folder, const FileStatus &status,
                                      const FolderListing &listing) const
{
    constexpr unsigned kAllOfTheOwners = 0700;
    if (m_protection.readOnlyFolders() == ReadOnlyFolders::Stay ||
        !isOwnAndReadOnly(status, m_calls.actingUser()) || !mayMakeWritable(ref, status, listing))
        return {};
    const auto changed = m_calls.setPermissions(
        folder, static_cast<std::uint16_t>(status.permissions | kAllOfTheOwners));
    return changed ? LentRights(m_calls, folder, status.permissions) : LentRights();
}

/// A folder on the way to something kept stays, and so do its rights. A folder that has left its
/// place since it was opened was put back by the user, and is no longer part of the cleaning.
bool RemovalSteps::mayMakeWritable(const EntryRef &ref, const FileStatus &status,
                                   const FolderListing &listing) const
{
    if (m_protection.isTouched() &&
        m_protection.match(ref.path(), FileKind::Folder) != ExclusionMatch::None)
        return false;
    for (std::size_t i = 0; i < listing.size(); ++i) {
        if (m_protection.keepsInode(listing.at(i).inode))
            return false;
    }
    const auto found = m_calls.status(ref.folder, ref.name);
    return found && found->inodeId() == status.inodeId();
}

SystemResult<FolderListing> RemovalSteps::list(int folder, std::span<char> space) const
{
    auto listing = FolderListing::ofFolder(m_calls, folder, space);
    if (listing && m_order == EntryOrder::ByInode)
        listing->sortByInode();
    return listing;
}

SystemResult<FileDescriptor> RemovalSteps::back(int folder, std::uint64_t inode) const
{
    return ifSame(m_calls.openParent(folder), inode);
}

SystemResult<FileDescriptor> RemovalSteps::reenter(const EntryRef &ref, std::uint64_t inode) const
{
    return ifSame(m_calls.openFolder(ref.folder, ref.name, Descent::Strict), inode);
}

SystemResult<FileDescriptor> RemovalSteps::ifSame(SystemResult<FileDescriptor> folder,
                                                  std::uint64_t inode) const
{
    if (!folder)
        return folder;
    const auto status = m_calls.statusOf(folder->get());
    if (!status)
        return tl::unexpected(status.error());
    if (status->inodeId() != InodeId{m_protection.device(), inode})
        return tl::unexpected(ESTALE);
    return folder;
}

bool RemovalSteps::isInPlace(int folder, std::span<const std::uint64_t> inside,
                             const FolderWay *around) const
{
    if (!leadsTo(folder, inside, around))
        return false;
    return m_location.content != SliceContent::Folders || locationStands();
}

/// Opens nothing: a confined thread may open neither the location nor what took its place, but it
/// may look at the names on the way.
bool RemovalSteps::locationStands() const
{
    const auto &[anchor, path] = m_location.path;
    for (qsizetype end = 0; end < path.size();) {
        end = path.indexOf('/', end + 1);
        end = end < 0 ? path.size() : end;
        const auto status = m_calls.status(anchor->get(), path.first(end).constData());
        if (!status)
            return tellsNothing(status.error());
        if (status->kind != FileKind::Folder ||
            (end == path.size() && status->inodeId() != m_location.identity.inodeId()))
            return false;
    }
    return true;
}

bool RemovalSteps::leadsTo(int folder, std::span<const std::uint64_t> inside,
                           const FolderWay *around) const
{
    std::vector<std::uint64_t> expected(inside.begin(), inside.end());
    for (; around; around = around->around)
        expected.push_back(around->inode);
    FileDescriptor held;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        auto parent = back(folder, expected[i]);
        if (!parent && parent.error() == EACCES)
            return leadsToUnseen(folder, std::span(expected).subspan(i));
        if (!parent)
            return tellsNothing(parent.error());
        held = std::move(*parent);
        folder = held.get();
    }
    return true;
}

/// For a thread that may not open the folders above: it may still look at them.
bool RemovalSteps::leadsToUnseen(int folder, std::span<const std::uint64_t> above) const
{
    QByteArray up;
    for (const std::uint64_t inode : above) {
        up += up.isEmpty() ? ".." : "/..";
        const auto status = m_calls.status(folder, up.constData());
        if (!status && !tellsNothing(status.error()))
            return false;
        if (status && status->inodeId() != InodeId{m_protection.device(), inode})
            return false;
    }
    return true;
}

/// What a name stands for right before its removal.
tl::expected<FileStatus, RemovalSteps::EntryOutcome> RemovalSteps::fileAt(const EntryRef &ref) const
{
    const auto status = m_calls.status(ref.folder, ref.name);
    if (!status)
        return tl::unexpected(refused(ref, RefusalReason::Unreadable, status.error()));
    if (m_protection.keepsInode(status->inode))
        return tl::unexpected(EntryOutcome::Stays);
    if (status->kind == FileKind::Folder)
        return tl::unexpected(refused(ref, RefusalReason::Changed, EISDIR));
    if (isNeeded(ref))
        return tl::unexpected(refused(ref, RefusalReason::StillNeeded, 0));
    return *status;
}

/// In doubt the other item is there. Looked up by its path, which a confined thread may do where it
/// may not open the folder around it: a mere guess, if that is a link by now.
bool RemovalSteps::isNeeded(const EntryRef &ref) const
{
    const QByteArray item = m_itemOf ? m_itemOf(ref.name) : QByteArray();
    if (item.isEmpty())
        return false;
    const auto found = m_calls.status(ref.folder, item.constData());
    return found || found.error() != ENOENT;
}

RemovalSteps::EntryOutcome RemovalSteps::removeFile(const EntryRef &ref) const
{
    const auto status = fileAt(ref);
    if (!status)
        return status.error();
    if (status->links > 1 || m_changes.include(*status))
        return removeLinkedFile(ref);
    return settled(takeAway(ref, *status), ref);
}

/// A file that has other names, or had some before the cleaning removed them.
RemovalSteps::EntryOutcome RemovalSteps::removeLinkedFile(const EntryRef &ref) const
{
    const auto lock = m_linkedFiles.lock();
    const auto status = fileAt(ref);
    if (!status)
        return status.error();
    if (m_changes.include(*status) &&
        (!m_linkedFiles.explain(*status) || m_changes.include(status->contentChanged)))
        return refused(ref, RefusalReason::ChangedLater, 0);
    const std::int64_t before = m_calls.now().stamp;
    const EntryOutcome outcome = settled(takeAway(ref, *status), ref);
    if (outcome == EntryOutcome::Gone)
        m_linkedFiles.note(status->inodeId(), before, m_calls.now().precise);
    return outcome;
}

RemovalSteps::EntryOutcome RemovalSteps::removeFolder(const EntryRef &ref, std::uint64_t inode,
                                                      LentRights &rights) const
{
    const auto status = m_calls.status(ref.folder, ref.name);
    if (!status)
        return refused(ref, RefusalReason::Unreadable, status.error());
    if (status->kind != FileKind::Folder ||
        status->inodeId() != InodeId{m_protection.device(), inode})
        return refused(ref, RefusalReason::Changed, ESTALE);
    const auto answer = takeAway(ref, *status);
    if (answer)
        rights.forget();
    return settled(answer, ref);
}

/// What takes another's name in the last instant must not go.
SystemResult<void> RemovalSteps::takeAway(const EntryRef &ref, const FileStatus &status) const
{
    const auto failed = [&](const ExactRemoval::Failure &failure) {
        return m_leftAside.note(ref.folder, ref.folderPath, ref.name, failure);
    };
    if (ref.slot && status.kind != FileKind::Folder && status.links == 1) {
        if (const auto taken = ref.slot->take(ref.folder, ref.name, status))
            return taken->map_error(failed);
    }
    return ExactRemoval(m_calls).remove(ref.folder, ref.name, status).map_error(failed);
}

RemovalSteps::EntryOutcome RemovalSteps::emptySlot(AsideSlot &slot,
                                                   const QByteArray &folderPath) const
{
    const auto left = slot.empty();
    if (!left)
        return EntryOutcome::Gone;
    m_builder.takeBack();
    const EntryRef ref{left->folder, folderPath, left->name.constData()};
    const int error = m_leftAside.note(ref.folder, folderPath, ref.name, left->failure);
    return settled(tl::unexpected(error), ref);
}

/// A cleaning was killed in the midst of an exact removal: what lies under the private name may be
/// what was to stay. A file that is still in a slot was not found by the search that reads the
/// notes.
RemovalSteps::EntryOutcome RemovalSteps::putBack(const EntryRef &ref) const
{
    const ExactRemoval removal(m_calls);
    const auto back = AsideNames::isPrivate(ref.name)
                          ? removal.moveToFree(ref.folder, ref.name,
                                               AsideNames::recoveredName(ref.name).constData())
                          : removal.putBack(ref.folder, ref.name);
    return refused(ref, RefusalReason::Changed, back ? 0 : back.error());
}

void RemovalSteps::abandon(const QByteArray &path, int error) const
{
    m_builder.refused(path, RefusalReason::Changed, error);
}

void RemovalSteps::tellOfRights(const EntryRef &ref, LentRights &rights) const noexcept
{
    if (const auto error = rights.failure())
        m_builder.tell([&] { return ref.path(); }, RefusalReason::RightsChanged, *error);
    rights.forget();
}

void RemovalSteps::ranOutOfMemory(const QByteArray &folderPath) const noexcept
{
    m_builder.tell([&] { return folderPath.chopped(1); }, RefusalReason::OutOfMemory, ENOMEM);
}

RemovalSteps::EntryOutcome RemovalSteps::settled(const SystemResult<void> &answer,
                                                 const EntryRef &ref) const
{
    if (answer) {
        m_builder.removed();
        return EntryOutcome::Gone;
    }
    if (answer.error() == ENOENT)
        return EntryOutcome::Gone;
    if (answer.error() == ESTALE)
        return refused(ref, RefusalReason::Changed, ESTALE);
    m_builder.failed(ref.path(), answer.error());
    return EntryOutcome::Stays;
}

RemovalSteps::EntryOutcome RemovalSteps::refused(const EntryRef &ref, RefusalReason reason,
                                                 int error) const
{
    if (error == ENOENT)
        return EntryOutcome::Gone;
    m_builder.refused(ref.path(), reason, error);
    return EntryOutcome::Stays;
}

tl::expected<FileKind, RemovalSteps::EntryOutcome>
RemovalSteps::kindOf(const EntryRef &ref, const FolderListing::Entry &entry) const
{
    if (entry.kind != FileKind::Unknown)
        return entry.kind;
    const auto status = m_calls.status(ref.folder, ref.name);
    if (!status)
        return tl::unexpected(refused(ref, RefusalReason::Unreadable, status.error()));
    return status->kind;
}
