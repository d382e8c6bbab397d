#include "slices/probe/HomeProbe.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"

#include <algorithm>
#include <cerrno>

namespace {

QByteArray joined(const QByteArray &folder, const QByteArray &name)
{
    return folder.isEmpty() ? name : folder + '/' + name;
}

bool isPlainName(const QByteArray &name)
{
    return !name.isEmpty() && name != "." && name != ".." && !name.contains('/');
}

/// Whether a pattern with one "*" stands for the name.
bool matches(const QByteArray &name, const QByteArray &pattern)
{
    const qsizetype star = pattern.indexOf('*');
    return name.size() >= pattern.size() - 1 && name.startsWith(pattern.first(star)) &&
           name.endsWith(pattern.sliced(star + 1));
}

/// An error also for a file that has grown beyond the limit: a part of a file may say anything.
SystemResult<QByteArray> readToTheEnd(const SystemCalls &calls, int file, std::size_t limit)
{
    QByteArray content(static_cast<qsizetype>(limit) + 1, Qt::Uninitialized);
    const std::span<char> space(content.data(), limit + 1);
    std::size_t size = 0;
    while (size <= limit) {
        const auto count = calls.read(file, space.subspan(size));
        if (!count)
            return tl::unexpected(count.error());
        if (*count == 0) {
            content.truncate(static_cast<qsizetype>(size));
            return content;
        }
        size += *count;
    }
    return tl::unexpected(EFBIG);
}

} // namespace

HomeProbe::HomeProbe(const SystemCalls &calls, std::shared_ptr<const FileDescriptor> home,
                     std::stop_token stop)
    : m_calls(calls), m_home(std::move(home)), m_stop(std::move(stop)), m_space(kListingSpace)
{
}

bool HomeProbe::hasFolder(const QByteArray &path) const
{
    return open(path).has_value();
}

std::optional<PlaceOutOfReach> HomeProbe::obstacleOnTheWay(const QByteArray &path) const
{
    QByteArray way;
    for (const QByteArray &name : path.split('/')) {
        way = joined(way, name);
        const auto folder = open(way);
        if (folder)
            continue;
        if (folder.error() == EXDEV)
            return PlaceOutOfReach{way, Obstacle::OtherFileSystem};
        if (linkAt(way))
            return PlaceOutOfReach{way, Obstacle::Link};
        const bool isMissing = folder.error() == ENOENT || folder.error() == ENOTDIR;
        return isMissing ? std::nullopt : std::optional(PlaceOutOfReach{way, Obstacle::Unreadable});
    }
    return std::nullopt;
}

std::optional<InodeId> HomeProbe::idOf(const QByteArray &path) const
{
    const auto folder = open(path);
    const auto status = folder ? m_calls.statusOf(folder->get()) : tl::unexpected(folder.error());
    return status ? std::optional(status->inodeId()) : std::nullopt;
}

std::vector<InodeId> HomeProbe::idsOnTheWay(const QByteArray &path) const
{
    std::vector<InodeId> found;
    QByteArray folder;
    for (const QByteArray &name : path.split('/')) {
        folder = joined(folder, name);
        const auto id = idOf(folder);
        if (!id)
            break;
        found.push_back(*id);
    }
    return found;
}

QByteArrayList HomeProbe::foldersMatching(const QByteArray &pattern) const
{
    QByteArrayList found;
    if (!m_stop.stop_requested())
        found.append(QByteArray());
    for (const QByteArray &component : pattern.split('/')) {
        QByteArrayList deeper;
        for (const QByteArray &folder : found)
            deeper += matchesIn(folder, component);
        found = deeper;
    }
    found.removeIf([this](const QByteArray &folder) { return !hasFolder(folder); });
    return found;
}

QByteArrayList HomeProbe::entriesMatching(const QByteArray &pattern) const
{
    QByteArrayList found;
    QByteArrayList ways;
    if (!m_stop.stop_requested())
        ways.append(QByteArray());
    for (const QByteArray &component : pattern.split('/')) {
        QByteArrayList deeper;
        for (const QByteArray &folder : std::as_const(ways)) {
            for (const QByteArray &match : matchesIn(folder, component))
                (linkAt(match) ? found : deeper).append(match);
        }
        ways = deeper;
    }
    ways.removeIf([this](const QByteArray &path) { return !isThere(path); });
    return found + ways;
}

QByteArrayList HomeProbe::filesAmong(const QByteArrayList &paths) const
{
    QByteArrayList files = paths;
    files.removeIf([this](const QByteArray &path) {
        const auto status = statusOf(path);
        return !status || status->kind != FileKind::Regular;
    });
    return files;
}

std::optional<QByteArray> HomeProbe::linkAt(const QByteArray &path) const
{
    if (m_stop.stop_requested())
        return std::nullopt;
    const auto [around, name] = anchoredEntry({m_home, path});
    const auto folder = open(around.relativePath);
    if (!folder)
        return std::nullopt;
    const auto text = m_calls.readLink(folder->get(), name.constData());
    return text ? std::optional(*text) : std::nullopt;
}

SystemResult<QByteArray> HomeProbe::contentOf(const QByteArray &path, std::size_t limit) const
{
    const auto [around, name] = anchoredEntry({m_home, path});
    const auto folder = open(around.relativePath);
    if (!folder)
        return tl::unexpected(folder.error());
    const auto file = m_calls.openFile(folder->get(), name.constData());
    if (!file)
        return tl::unexpected(file.error());
    const auto status = m_calls.statusOf(file->get());
    if (!status)
        return tl::unexpected(status.error());
    if (status->kind != FileKind::Regular || status->size > limit)
        return tl::unexpected(EFBIG);
    return readToTheEnd(m_calls, file->get(), limit);
}

SystemResult<FileDescriptor> HomeProbe::open(const QByteArray &path) const
{
    return openOnVolume(m_calls, {m_home, path});
}

SystemResult<FileStatus> HomeProbe::statusOf(const QByteArray &path) const
{
    const auto [around, name] = anchoredEntry({m_home, path});
    const auto folder = open(around.relativePath);
    if (!folder)
        return tl::unexpected(folder.error());
    return m_calls.status(folder->get(), name.constData());
}

/// Whether something is there, or may be. Nothing is where a cleaning does not get to.
bool HomeProbe::isThere(const QByteArray &path) const
{
    const auto status = statusOf(path);
    const int error = status ? 0 : status.error();
    return error != ENOENT && error != ENOTDIR && error != ELOOP && error != EXDEV;
}

/// Includes links, and entries of which the file system does not tell the kind: opening them shows
/// whether they are folders.
QByteArrayList HomeProbe::foldersIn(const QByteArray &path) const
{
    QByteArrayList found;
    if (m_stop.stop_requested())
        return found;
    const auto folder = open(path);
    if (!folder)
        return found;
    const auto listing = FolderListing::ofFolder(m_calls, folder->get(), m_space);
    if (!listing)
        return found;
    for (std::size_t i = 0; i < listing->size(); ++i) {
        const FolderListing::Entry &entry = listing->at(i);
        if (entry.kind != FileKind::Regular && entry.kind != FileKind::Other)
            found.append(joined(path, listing->name(entry)));
    }
    std::sort(found.begin(), found.end());
    return found;
}

QByteArrayList HomeProbe::behindLink(const QByteArray &path, const QByteArray &name) const
{
    const std::optional<QByteArray> target = linkAt(joined(path, name));
    if (!target)
        return {joined(path, name)};
    return isPlainName(*target) ? QByteArrayList{joined(path, *target)} : QByteArrayList();
}

QByteArrayList HomeProbe::matchesIn(const QByteArray &path, const QByteArray &component) const
{
    if (component.contains('*')) {
        QByteArrayList folders = foldersIn(path);
        folders.removeIf([&](const QByteArray &folder) {
            return !matches(folder.sliced(folder.lastIndexOf('/') + 1), component);
        });
        return folders;
    }
    if (component.startsWith('@'))
        return behindLink(path, component.sliced(1));
    return {joined(path, component)};
}
