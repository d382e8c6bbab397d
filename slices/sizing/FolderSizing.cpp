#include "slices/sizing/FolderSizing.h"

#include "platform/base/ByteCount.h"
#include "platform/base/Log.h"
#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "platform/walk/DirectoryWalker.h"

#include <QSet>
#include <cerrno>
#include <cstring>
#include <vector>

namespace {

constexpr std::uint16_t kStickyBit = 01000;
constexpr std::size_t kCacheLine = 64;

/// What of a folder's status decides about a single entry.
struct FolderRights
{
    std::uint32_t owner;
    std::uint16_t permissions;
};

bool isNotImmutable(const FileStatus &entry)
{
    return !entry.isImmutable && !entry.isAppendOnly;
}

/// Whether a folder lets this process remove anything at all.
bool allowsRemoval(const SystemCalls &calls, int descriptor, const FileStatus &folder)
{
    return isNotImmutable(folder) && calls.mayChangeEntries(descriptor);
}

/// Whether the mode alone gives the owner the right to take things out. It never refuses it here:
/// an administrator may have the right all the same.
bool isGivenByMode(const FileStatus &folder, const ActingUser &user)
{
    return folder.tellsAll && folder.owner == user.user && !isOwnAndReadOnly(folder, user);
}

/// Whether a folder that allows removal allows it for this entry. In a sticky folder a user may
/// remove only his own entries, or any entry if the folder is his own. An entry on which something
/// is mounted is held by the mount.
bool allowsRemovalOf(const FileStatus &entry, const FolderRights &folder, const ActingUser &user)
{
    if (entry.isMountRoot)
        return false;
    const bool isSticky = (folder.permissions & kStickyBit) != 0;
    return !isSticky || user.ownsEverything || entry.owner == user.user ||
           folder.owner == user.user;
}

/// What is known of a location before the walk.
struct StartOfSizing
{
    ActingUser user;
    bool allowsRemoval; ///< the location itself
    /// Whether the mode decides in folders of the user's own. Believed only where the system has
    /// just allowed removal: a whole volume may be closed for reasons that no mode tells.
    bool modeDecidesForOwner;
};

StartOfSizing startOfSizing(const SystemCalls &calls, int folder)
{
    const bool allows = calls.mayChangeEntries(folder);
    return {calls.actingUser(), allows,
            allows && calls.fileSystemTraits(folder).modeDecidesForOwner};
}

/// What a cleaning will keep inside a location. Asked about every entry, however much is kept: for
/// most the name alone decides.
class KeptPaths final
{
public:
    explicit KeptPaths(const QByteArrayList &paths) : m_paths(paths.begin(), paths.end())
    {
        for (const QByteArray &path : paths)
            m_names.insert(path.sliced(path.lastIndexOf('/') + 1));
    }

    bool holds(const WalkedFolder &folder, const char *name) const
    {
        return !m_names.isEmpty() &&
               m_names.contains(QByteArray::fromRawData(name, qsizetype(std::strlen(name)))) &&
               m_paths.contains(folder.pathTo(name));
    }

private:
    QSet<QByteArray> m_paths;
    QSet<QByteArray> m_names; ///< the last names of these
};

/// Sums up what one thread of the walk finds.
class alignas(kCacheLine) SizingVisitor final : public DirectoryVisitor
{
public:
    SizingVisitor(const SystemCalls &calls, const StartOfSizing &start, const KeptPaths &kept,
                  ReadOnlyFolders readOnlyFolders)
        : m_calls(calls), m_start(start), m_kept(kept), m_readOnlyFolders(readOnlyFolders)
    {
    }

    const FolderSize &size() const { return m_size; }

    bool shouldEnter(const WalkedFolder &parent, const char *name) override
    {
        ++m_size.items;
        return !m_kept.holds(parent, name);
    }

    EntryDetail entered(const EnteredFolder &entered) override
    {
        const bool goes = isNotImmutable(entered.status) &&
                          (mayChangeEntries(entered) || willAllowRemoval(entered));
        return goes ? EntryDetail::Status : EntryDetail::NameAlone;
    }

    void found(const WalkedEntry &entry) override
    {
        ++m_size.items;
        if (entry.status != nullptr && isNotImmutable(*entry.status) &&
            allowsRemovalOf(*entry.status, {entry.folder.owner(), entry.folder.permissions()},
                            m_start.user) &&
            !m_kept.holds(entry.folder, entry.name))
            m_size.bytes = sumOfByteCounts(m_size.bytes, byteCountOf(entry.status->size));
    }

    void failed(const WalkedFolder &, const char *, int) override { m_size.isComplete = false; }

private:
    /// Asks only where the mode does not settle it, and about the location itself just once.
    bool mayChangeEntries(const EnteredFolder &entered) const
    {
        if (entered.folder.parent() == nullptr)
            return m_start.allowsRemoval;
        return (m_start.modeDecidesForOwner && isGivenByMode(entered.status, m_start.user)) ||
               m_calls.mayChangeEntries(entered.descriptor);
    }

    /// Whether a cleaning will make the folder allow removal. The location itself keeps its rights.
    bool willAllowRemoval(const EnteredFolder &entered) const
    {
        return m_readOnlyFolders == ReadOnlyFolders::Emptied &&
               entered.folder.parent() != nullptr && isOwnAndReadOnly(entered.status, m_start.user);
    }

    const SystemCalls &m_calls;
    const StartOfSizing m_start;
    const KeptPaths &m_kept;
    const ReadOnlyFolders m_readOnlyFolders;
    FolderSize m_size;
};

FolderSize sizeOfFolder(const SystemCalls &calls, FileDescriptor folder,
                        const std::stop_token &stop, unsigned threads, const SizingRules &rules)
{
    const KeptPaths kept(rules.kept);
    std::vector<SizingVisitor> visitors(
        threads == 0 ? usefulWalkThreads() : threads,
        SizingVisitor(calls, startOfSizing(calls, folder.get()), kept, rules.readOnlyFolders));
    std::vector<DirectoryVisitor *> team;
    team.reserve(visitors.size());
    for (SizingVisitor &visitor : visitors)
        team.push_back(&visitor);
    walkDirectory(calls, std::move(folder), {}, stop, team);

    FolderSize sum;
    sum.isComplete = !stop.stop_requested();
    for (const SizingVisitor &visitor : visitors) {
        sum.bytes = sumOfByteCounts(sum.bytes, visitor.size().bytes);
        sum.items += visitor.size().items;
        sum.isComplete = sum.isComplete && visitor.size().isComplete;
    }
    return sum;
}

/// Nothing counts. The result is complete when nothing is there, or only behind a link, or on
/// another file system, which is never cleaned.
FolderSize nothingBecauseOf(int error)
{
    FolderSize nothing;
    nothing.isComplete = error == ENOENT || error == ENOTDIR || error == ELOOP || error == EXDEV;
    return nothing;
}

bool leadsToNoItem(const SystemCalls &calls, int folder, const char *link)
{
    const auto behind = calls.kindBehind(folder, link);
    return !behind || *behind == FileKind::Folder;
}

bool isCounted(const ItemVerdict &item)
{
    return item.isDeletable && item.isNotImmutable;
}

ItemVerdict verdictOn(const SystemCalls &calls, int folder, const FileStatus &folderStatus,
                      const FileStatus &item)
{
    return {allowsRemoval(calls, folder, folderStatus) &&
                allowsRemovalOf(item, {folderStatus.owner, folderStatus.permissions},
                                calls.actingUser()),
            isNotImmutable(item)};
}

FolderSize sizeOfItem(const SystemCalls &calls, const AnchoredPath &location)
{
    const AnchoredEntry entry = anchoredEntry(location);
    const auto folder = openAnchored(calls, entry.folder, Descent::Strict);
    if (!folder)
        return nothingBecauseOf(folder.error());
    const auto folderStatus = calls.statusOf(folder->get());
    if (!folderStatus)
        return nothingBecauseOf(folderStatus.error());
    const char *name = entry.name.constData();
    const auto status = calls.status(folder->get(), name);
    if (!status)
        return nothingBecauseOf(status.error());
    if (status->kind == FileKind::Link && leadsToNoItem(calls, folder->get(), name))
        return {};

    FolderSize size;
    size.items = 1;
    size.item = verdictOn(calls, folder->get(), *folderStatus, *status);
    if (isCounted(*size.item))
        size.bytes = byteCountOf(status->size);
    return size;
}

} // namespace

QByteArrayList pathsInside(const FileUrl &location, const FileUrls &urls)
{
    const QByteArray prefix = location.path() + '/';
    QByteArrayList paths;
    for (const FileUrl &url : urls) {
        if (url.path().startsWith(prefix))
            paths.append(url.path().sliced(prefix.size()));
    }
    return paths;
}

FolderSize measureFolder(const SystemCalls &calls, const AnchoredPath &location,
                         const std::stop_token &stop, unsigned threads, const SizingRules &rules)
{
    auto folder = openOnVolume(calls, location);
    if (stop.stop_requested())
        return nothingBecauseOf(ECANCELED);
    if (folder)
        return sizeOfFolder(calls, std::move(*folder), stop, threads, rules);
    const bool isNoFolder = folder.error() == ENOTDIR || folder.error() == ELOOP;
    return isNoFolder ? sizeOfItem(calls, location) : nothingBecauseOf(folder.error());
}

bool mayBeDeleted(const SystemCalls &calls, const AnchoredPath &item)
{
    const auto [around, name] = anchoredEntry(item);
    const auto folder = openOnVolume(calls, around);
    const auto folderStatus =
        folder ? calls.statusOf(folder->get()) : tl::unexpected(folder.error());
    if (!folderStatus)
        return false;
    const auto status = calls.status(folder->get(), name.constData());
    return status && isCounted(verdictOn(calls, folder->get(), *folderStatus, *status));
}

qint64 sizeForFolderAtPath(const SystemCalls &calls, FileAccess &access, const FileUrl &url,
                           const std::stop_token &stop, const SizingRules &rules)
{
    const AccessScope scope(access);
    const auto location = access.anchoredPath(url);
    if (!location)
        return 0;
    const FolderSize size = measureFolder(calls, *location, stop, 0, rules);
    if (size.item)
        qCInfo(logVantor, "%d : %d", size.item->isDeletable, size.item->isNotImmutable);
    return size.bytes;
}
