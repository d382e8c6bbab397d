#include "slices/exclusions/ResolvedExclusions.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"

#include <algorithm>
#include <cerrno>

namespace {

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
    bool keep(const FileUrl &url);
    void keepTargetOf(const FileUrl &url);
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
    } else {
        m_result.lost.push_back({url.path(), identity.error()});
        if (identity.error() == ELOOP || identity.error() == ENOTDIR) // a link on the way
            resolveElsewhere(url);
    }
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
    if (keep(*real))
        keepTargetOf(*real);
}

bool Resolver::keep(const FileUrl &url)
{
    const auto place = m_access.anchoredPath(url);
    const auto identity = place && place->anchor ? identityInGrant(*place) : identityOutside(url);
    if (identity)
        m_result.identities.push_back(*identity);
    else
        m_result.lost.push_back({url.path(), identity.error(), !isGone(identity.error())});
    return identity.has_value();
}

/// An exclusion that is itself a link outside the granted folder means what the link leads to.
void Resolver::keepTargetOf(const FileUrl &url)
{
    const auto target = m_calls.realPath(url.path().constData());
    if (!target || *target == url.path())
        return; // a link to nothing keeps only itself
    const FileUrl real =
        FileUrl::fromPath(*target, url.isFolder() ? FileUrlKind::Folder : FileUrlKind::File);
    m_result.paths.add(real);
    keep(real);
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

SystemResult<FileIdentity> Resolver::identityOutside(const FileUrl &url) const
{
    const QByteArray path = url.path();
    const QByteArray name = url.lastPathComponent();
    const auto folder = m_calls.openRoot(path.first(path.size() - name.size()).constData());
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
    const QByteArray path = url.path();
    const auto around = m_calls.realPath(path.first(path.size() - name.size()).constData());
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
