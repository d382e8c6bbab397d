#include "slices/removal/RemovalSteps.h"

#include "platform/system/SystemCalls.h"

#include <cerrno>

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

RemovalSteps::Verdict RemovalSteps::deal(const EntryRef &ref, const FolderListing::Entry &entry,
                                         EntryPolicy policy) const
{
    if (m_protection.keepsInode(entry.inode))
        return {EntryOutcome::Stays};
    const auto kind = kindOf(ref, entry);
    if (!kind)
        return {kind.error()};
    if (policy == EntryPolicy::Judged) {
        const ExclusionMatch match = m_protection.match(ref.path(), *kind);
        if (match == ExclusionMatch::Whole)
            return {EntryOutcome::Stays};
        if (match == ExclusionMatch::OnTheWay)
            return {EntryOutcome::Enter, EntryPolicy::Judged};
    }
    const bool isFolder = *kind == FileKind::Folder;
    if (policy != EntryPolicy::Removed && m_builder.announce())
        m_builder.logRemoval(ref.path(), isFolder ? FileUrlKind::Folder : FileUrlKind::File);
    return {isFolder ? EntryOutcome::Enter : removeFile(ref)};
}

tl::expected<EnteredFolder, RemovalSteps::EntryOutcome>
RemovalSteps::enter(const EntryRef &ref, std::span<char> space) const
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
    auto listing = list(opened->get(), space);
    if (!listing)
        return tl::unexpected(refused(ref, RefusalReason::PartlyListed, listing.error()));
    const auto formerRights = makeWritable(ref, opened->get(), *status, *listing);
    return EnteredFolder{std::move(*opened), status->inode, std::move(*listing), formerRights};
}

/// Uses the descriptor: the name may stand for another folder by now. Where the system refuses the
/// change, the removals inside fail and report it.
std::optional<std::uint16_t> RemovalSteps::makeWritable(const EntryRef &ref, int folder,
                                                        const FileStatus &status,
                                                        const FolderListing &listing) const
{
    constexpr unsigned kAllOfTheOwners = 0700;
    if (m_protection.readOnlyFolders() == ReadOnlyFolders::Stay ||
        !isOwnAndReadOnly(status, m_calls.actingUser()) || !mayMakeWritable(ref, status, listing))
        return std::nullopt;
    const auto changed = m_calls.setPermissions(
        folder, static_cast<std::uint16_t>(status.permissions | kAllOfTheOwners));
    return changed ? std::optional(status.permissions) : std::nullopt;
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

void RemovalSteps::giveBack(int folder, std::optional<std::uint16_t> formerRights) const
{
    if (formerRights)
        m_calls.setPermissions(folder, *formerRights);
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
    auto parent = m_calls.openParent(folder);
    if (!parent)
        return parent;
    const auto status = m_calls.statusOf(parent->get());
    if (!status)
        return tl::unexpected(status.error());
    if (status->inodeId() != InodeId{m_protection.device(), inode})
        return tl::unexpected(ESTALE);
    return parent;
}

RemovalSteps::EntryOutcome RemovalSteps::removeFile(const EntryRef &ref) const
{
    return settled(m_calls.removeFile(ref.folder, ref.name), ref);
}

RemovalSteps::EntryOutcome RemovalSteps::removeFolder(const EntryRef &ref) const
{
    return settled(m_calls.removeFolder(ref.folder, ref.name), ref);
}

void RemovalSteps::abandon(const QByteArray &path, int error) const
{
    m_builder.refused(path, RefusalReason::Changed, error);
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
    if (m_protection.keepsInode(status->inode))
        return tl::unexpected(EntryOutcome::Stays);
    return status->kind;
}
