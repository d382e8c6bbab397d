#include "slices/exclusions/ResolvedExclusions.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"

#include <algorithm>
#include <cerrno>

namespace {

/// As many as the system itself follows.
constexpr int kMostLinks = 40;

/// With its slash.
QByteArray pathAround(const FileUrl &url)
{
    const QByteArray path = url.path();
    return path.first(path.size() - url.lastPathComponent().size());
}

/// The folders on the way to an absolute path without a slash at its end, and the path itself.
QByteArrayList pathsOnTheWay(const QByteArray &path)
{
    QByteArrayList paths;
    for (qsizetype slash = path.indexOf('/', 1); slash > 0; slash = path.indexOf('/', slash + 1))
        paths.append(path.first(slash));
    paths.append(path);
    return paths;
}

/// Whether nothing is there, rather than something that could not be looked at.
bool isGone(int error)
{
    return error == ENOENT || error == ENOTDIR;
}

/// Resolves one exclusion after the other.
class Resolver final
{
public:
    Resolver(const SystemCalls &calls, const FileAccess &access, const ExcludedPaths &excluded)
        : m_calls(calls), m_access(access)
    {
        m_result.paths = excluded;
    }

    ResolvedExclusions resolved()
    {
        const FileUrls given = m_result.paths.urls();
        for (const FileUrl &url : given)
            resolve(url);
        return std::move(m_result);
    }

private:
    void resolve(const FileUrl &url);
    void resolveElsewhere(const FileUrl &url);
    void addPathsInHome(const FileUrl &url);
    std::optional<InodeId> idOf(const QByteArray &path) const;
    bool keep(const FileUrl &url);
    void keepTargetOf(const FileUrl &url, const AnchoredPath &place);
    void keepTargetOf(const FileUrl &link);
    SystemResult<FileUrl> targetOf(const FileUrl &link) const;
    SystemResult<FileIdentity> identityOf(const FileUrl &url) const;
    SystemResult<FileDescriptor> openAround(const FileUrl &url) const;
    SystemResult<FileIdentity> identityInGrant(const AnchoredPath &place) const;
    SystemResult<FileIdentity> identityOutside(const FileUrl &url) const;
    SystemResult<FileUrl> withoutLinksOnTheWay(const FileUrl &url) const;

    const SystemCalls &m_calls;
    const FileAccess &m_access;
    ResolvedExclusions m_result;
};

void Resolver::resolve(const FileUrl &url)
{
    const auto place = m_access.anchoredPath(url);
    if (!place || !place->anchor)
        return resolveElsewhere(url);
    if (const auto identity = identityInGrant(*place)) {
        m_result.identities.push_back(*identity);
        keepTargetOf(url, *place);
    } else {
        m_result.lost.push_back({url.path(), identity.error()});
        if (identity.error() == ELOOP || identity.error() == ENOTDIR) // a link on the way
            resolveElsewhere(url);
    }
}

/// What may be a link, but does not tell, may lead anywhere.
void Resolver::keepTargetOf(const FileUrl &url, const AnchoredPath &place)
{
    if (place.relativePath.isEmpty())
        return;
    const auto [around, name] = anchoredEntry(place);
    const auto folder = openAnchored(m_calls, around, Descent::AcrossMounts);
    const auto status =
        folder ? m_calls.status(folder->get(), name.constData()) : tl::unexpected(folder.error());
    if (status && status->kind == FileKind::Link)
        keepTargetOf(url);
    else if (!status && !isGone(status.error()))
        m_result.lost.push_back({url.path(), status.error(), true});
}

/// An exclusion whose path does not lead straight down from the granted folder may still end there.
void Resolver::resolveElsewhere(const FileUrl &url)
{
    const auto real = withoutLinksOnTheWay(url);
    if (!real) {
        m_result.lost.push_back({url.path(), real.error(), !isGone(real.error())});
        return;
    }
    if (*real != url)
        m_result.paths.add(*real);
    addPathsInHome(*real);
    if (keep(*real))
        keepTargetOf(*real);
}

/// The home may be shown at another path too, by a mount that no link gives away. What is excluded
/// there in or around the home is excluded by the home's own path as well.
void Resolver::addPathsInHome(const FileUrl &url)
{
    const auto home = m_access.grantedFolder();
    const auto homeId = home ? idOf(home->path()) : std::nullopt;
    if (!homeId)
        return;
    const QByteArray path = url.path();
    for (const QByteArray &around : pathsOnTheWay(path)) {
        if (idOf(around) == homeId)
            m_result.paths.add(
                FileUrl::fromPath(home->path() + path.sliced(around.size()), FileUrlKind::Folder));
    }
    const auto excludedId = idOf(path);
    for (const QByteArray &around : pathsOnTheWay(home->path())) {
        if (excludedId && idOf(around) == excludedId)
            m_result.paths.add(FileUrl::fromPath(around, FileUrlKind::Folder));
    }
}

/// Nothing for what is no folder, or cannot be looked at.
std::optional<InodeId> Resolver::idOf(const QByteArray &path) const
{
    const auto folder = m_calls.openRoot(path.constData());
    const auto status = folder ? m_calls.statusOf(folder->get()) : tl::unexpected(folder.error());
    return status ? std::optional(status->inodeId()) : std::nullopt;
}

bool Resolver::keep(const FileUrl &url)
{
    const auto identity = identityOf(url);
    if (identity)
        m_result.identities.push_back(*identity);
    else
        m_result.lost.push_back({url.path(), identity.error(), !isGone(identity.error())});
    return identity.has_value();
}

/// An exclusion that is itself a link means the link and what it leads to, past any other link. A
/// link to nothing keeps only itself.
void Resolver::keepTargetOf(const FileUrl &link)
{
    FileUrl last = link;
    for (int step = 0; step < kMostLinks; ++step) {
        const auto next = targetOf(last);
        const int error = next ? 0 : next.error();
        if (next && next->path() != last.path())
            last = *next;
        else if (next || error == EINVAL || error == ELOOP || isGone(error))
            return; // no link any more, or one that leads nowhere
        else
            return m_result.lost.push_back({last.path(), error, true});
        const auto identity = identityOf(last);
        if (!identity && isGone(identity.error()))
            return;
        m_result.paths.add(last);
        keep(last);
    }
}

/// What a link holds, as a path without links on the way; EINVAL for what is no link.
SystemResult<FileUrl> Resolver::targetOf(const FileUrl &link) const
{
    const auto folder = openAround(link);
    if (!folder)
        return tl::unexpected(folder.error());
    const auto text = m_calls.readLink(folder->get(), link.lastPathComponent().constData());
    if (!text)
        return tl::unexpected(text.error());
    const QByteArray target = text->startsWith('/') ? *text : pathAround(link) + *text;
    const QByteArray name = target.sliced(target.lastIndexOf('/') + 1);
    if (!name.isEmpty() && name != "." && name != "..")
        return withoutLinksOnTheWay(FileUrl::fromPath(target, FileUrlKind::Folder));
    return m_calls.realPath(target.constData()).map([](const QByteArray &real) {
        return FileUrl::fromPath(real, FileUrlKind::Folder);
    });
}

SystemResult<FileIdentity> Resolver::identityOf(const FileUrl &url) const
{
    const auto place = m_access.anchoredPath(url);
    return place && place->anchor ? identityInGrant(*place) : identityOutside(url);
}

SystemResult<FileIdentity> Resolver::identityInGrant(const AnchoredPath &place) const
{
    if (place.relativePath.isEmpty())
        return m_calls.identityOf(place.anchor->get());
    const auto [around, name] = anchoredEntry(place);
    const auto folder = openAnchored(m_calls, around, Descent::AcrossMounts);
    if (!folder)
        return tl::unexpected(folder.error());
    return m_calls.identity(folder->get(), name.constData());
}

SystemResult<FileDescriptor> Resolver::openAround(const FileUrl &url) const
{
    const auto place = m_access.anchoredPath(url);
    if (place && place->anchor && !place->relativePath.isEmpty())
        return openAnchored(m_calls, anchoredEntry(*place).folder, Descent::AcrossMounts);
    return m_calls.openRoot(pathAround(url).constData());
}

SystemResult<FileIdentity> Resolver::identityOutside(const FileUrl &url) const
{
    const QByteArray name = url.lastPathComponent();
    const auto folder = m_calls.openRoot(pathAround(url).constData());
    if (!folder)
        return tl::unexpected(folder.error());
    return name.isEmpty() ? m_calls.identityOf(folder->get())
                          : m_calls.identity(folder->get(), name.constData());
}

SystemResult<FileUrl> Resolver::withoutLinksOnTheWay(const FileUrl &url) const
{
    const QByteArray name = url.lastPathComponent();
    if (name.isEmpty())
        return url;
    const auto around = m_calls.realPath(pathAround(url).constData());
    if (!around)
        return tl::unexpected(around.error());
    return FileUrl::fromPath(*around + '/' + name,
                             url.isFolder() ? FileUrlKind::Folder : FileUrlKind::File);
}

} // namespace

ResolvedExclusions resolveExclusions(const SystemCalls &calls, const FileAccess &access,
                                     const ExcludedPaths &excluded)
{
    return Resolver(calls, access, excluded).resolved();
}
