#include "slices/CleaningPlan.h"

#include "slices/AnchoredFolder.h"

#include <algorithm>
#include <cerrno>

namespace {

bool hasDotComponent(const QByteArray &path)
{
    const QByteArrayList names = path.split('/');
    return names.contains(".") || names.contains("..");
}

} // namespace

/// Makes one plan.
class CleaningPlanner final
{
public:
    CleaningPlanner(const SystemCalls &calls, const FileAccess &access,
                    const QList<SliceToClean> &slices, const ExcludedPaths &excluded)
        : m_calls(calls), m_access(access), m_slices(slices)
    {
        m_plan.m_excluded = excluded;
    }

    CleaningPlan plan();

private:
    struct Unresolved
    {
        QByteArray path;
        int error;
    };

    bool refuseUnparsable();
    void resolveExclusions();
    SystemResult<FileIdentity> identityOfExclusion(const FileUrl &url) const;
    SystemResult<FileIdentity> identityElsewhere(const FileUrl &url) const;
    void planSlice(const SliceToClean &slice);
    void planLocation(CleaningLocation location);
    bool isExcludedByPath(const CleaningLocation &location) const;
    bool anchor(CleaningLocation &location);
    struct Obstacle
    {
        RefusalReason reason;
        int error;
    };
    tl::expected<bool, Obstacle> examine(CleaningLocation &location) const;
    Obstacle obstacle(int folder, const QByteArray &name, int error) const;
    bool isExcluded(const FileIdentity &identity) const;
    bool refuseUnresolved(const CleaningLocation &location);
    void refuse(const QByteArray &path, RefusalReason reason, int error = 0);

    const SystemCalls &m_calls;
    const FileAccess &m_access;
    const QList<SliceToClean> &m_slices;
    CleaningPlan m_plan;
    std::vector<Unresolved> m_unresolved;
};

CleaningPlan CleaningPlanner::plan()
{
    if (!refuseUnparsable()) {
        resolveExclusions();
        for (const SliceToClean &slice : m_slices)
            planSlice(slice);
    }
    return std::move(m_plan);
}

bool CleaningPlanner::refuseUnparsable()
{
    for (const QString &text : m_plan.m_excluded.unparsable())
        refuse(text.toUtf8(), RefusalReason::UnparsableExclusion);
    return !m_plan.m_excluded.unparsable().isEmpty();
}

void CleaningPlanner::resolveExclusions()
{
    for (const FileUrl &url : m_plan.m_excluded.urls()) {
        const auto identity = identityOfExclusion(url);
        if (identity)
            m_plan.m_excludedIdentities.push_back(*identity);
        else
            m_unresolved.push_back({url.path(), identity.error()});
    }
}

SystemResult<FileIdentity> CleaningPlanner::identityOfExclusion(const FileUrl &url) const
{
    const auto anchored = m_access.anchoredPath(url);
    if (!anchored || !anchored->anchor)
        return identityElsewhere(url);
    if (anchored->relativePath.isEmpty())
        return m_calls.identityOf(anchored->anchor->get());
    const auto [around, name] = anchoredEntry(*anchored);
    const auto folder = openAnchored(m_calls, around, Descent::AcrossMounts);
    if (!folder)
        return tl::unexpected(folder.error());
    return m_calls.identity(folder->get(), name.constData());
}

/// An exclusion that does not lie below the granted folder by its path may still do so by another
/// road, such as a mount of the home folder. Only one that speaks of a place that is to be cleaned
/// is looked for: other volumes may be slow, or hang.
SystemResult<FileIdentity> CleaningPlanner::identityElsewhere(const FileUrl &url) const
{
    const QByteArray path = url.path();
    const auto speaksOf = [&](const FileUrl &place) { return path.contains(place.path()); };
    const auto touches = [&](const SliceToClean &slice) {
        return std::any_of(slice.fileURLs.begin(), slice.fileURLs.end(), speaksOf);
    };
    if (!std::any_of(m_slices.begin(), m_slices.end(), touches))
        return tl::unexpected(ENOENT);
    const QByteArray name = url.lastPathComponent();
    const auto folder = m_calls.openRoot(path.first(path.size() - name.size()).constData());
    if (!folder)
        return tl::unexpected(folder.error());
    return m_calls.identity(folder->get(), name.constData());
}

void CleaningPlanner::planSlice(const SliceToClean &slice)
{
    const ExcludedPaths &excluded = m_plan.m_excluded;
    const bool isAnyTouched =
        std::any_of(slice.fileURLs.begin(), slice.fileURLs.end(),
                    [&](const FileUrl &url) { return excluded.touches(url); });
    for (const FileUrl &url : slice.fileURLs) {
        // Of the very files all are judged as soon as one is touched: none may slip through
        // because it was listed beside another.
        const bool isTouched =
            slice.mode == CleaningMode::TheVeryFiles ? isAnyTouched : excluded.touches(url);
        planLocation({slice.name, url, {}, slice.mode, {}, isTouched});
    }
}

void CleaningPlanner::planLocation(CleaningLocation location)
{
    if (isExcludedByPath(location)) {
        m_plan.m_excludedLocations.append(location.url);
        return;
    }
    if (!anchor(location))
        return;
    const auto isKept = examine(location);
    if (!isKept) {
        if (isKept.error().error != ENOENT)
            refuse(location.url.path(), isKept.error().reason, isKept.error().error);
    } else if (*isKept) {
        m_plan.m_excludedLocations.append(location.url);
    } else if (!refuseUnresolved(location)) {
        m_plan.m_locations.push_back(std::move(location));
    }
}

bool CleaningPlanner::isExcludedByPath(const CleaningLocation &location) const
{
    const ExcludedPaths &excluded = m_plan.m_excluded;
    const QByteArray path = location.url.path();
    const Sparing byPath = excluded.sparingByPath(path + '/');
    if (location.mode == CleaningMode::ContentsOfFolders)
        return byPath == Sparing::Whole;
    // A file goes or stays as one: what holds something excluded stays too.
    const QByteArray text = location.url.isFolder() ? path + '/' : path;
    return byPath != Sparing::None ||
           (location.isTouched && excluded.sparingByText(text) != Sparing::None);
}

/// Finds the place below the granted folder; refuses it where it is not.
bool CleaningPlanner::anchor(CleaningLocation &location)
{
    const auto anchored = m_access.anchoredPath(location.url);
    if (!anchored || !anchored->anchor || hasDotComponent(anchored->relativePath))
        refuse(location.url.path(), RefusalReason::OutsideGrant);
    else if (anchored->relativePath.isEmpty())
        refuse(location.url.path(), RefusalReason::GrantedFolder);
    else
        location.path = *anchored;
    return location.path.anchor != nullptr;
}

/// Goes the whole way to the place, folder by folder, and notes what is there. Yes when it, or a
/// folder around it, is an excluded one under whatever name.
tl::expected<bool, CleaningPlanner::Obstacle>
CleaningPlanner::examine(CleaningLocation &location) const
{
    QByteArrayList names = location.path.relativePath.split('/');
    const QByteArray fileName =
        location.mode == CleaningMode::TheVeryFiles ? names.takeLast() : QByteArray();
    FileDescriptor held;
    int folder = location.path.anchor->get();
    auto identity = m_calls.identityOf(folder);
    for (const QByteArray &name : names) {
        if (!identity || isExcluded(*identity))
            break;
        auto next = m_calls.openFolder(folder, name.constData(), Descent::Strict);
        if (!next)
            return tl::unexpected(obstacle(folder, name, next.error()));
        held = std::move(*next);
        folder = held.get();
        identity = m_calls.identityOf(folder);
    }
    if (identity && !isExcluded(*identity) && !fileName.isEmpty())
        identity = m_calls.identity(folder, fileName.constData());
    if (!identity)
        return tl::unexpected(Obstacle{RefusalReason::Unreadable, identity.error()});
    location.identity = *identity;
    return isExcluded(*identity);
}

/// Why a folder could not be opened.
CleaningPlanner::Obstacle CleaningPlanner::obstacle(int folder, const QByteArray &name,
                                                    int error) const
{
    if (error == EXDEV)
        return {RefusalReason::OtherFileSystem, error};
    if (error != ELOOP && error != ENOTDIR)
        return {RefusalReason::Unreadable, error};
    const auto status = m_calls.status(folder, name.constData());
    const bool isLink = status && status->kind == FileKind::Link;
    return {isLink ? RefusalReason::Link : RefusalReason::NotAFolder, error};
}

bool CleaningPlanner::isExcluded(const FileIdentity &identity) const
{
    const auto &all = m_plan.m_excludedIdentities;
    return std::any_of(all.begin(), all.end(), [&](const FileIdentity &excluded) {
        return excluded.device == identity.device && excluded.inode == identity.inode;
    });
}

/// An exclusion that cannot be found could be anything in the folder that holds it by its path.
bool CleaningPlanner::refuseUnresolved(const CleaningLocation &location)
{
    const QByteArray inside = location.url.path() + '/';
    const auto found =
        std::find_if(m_unresolved.begin(), m_unresolved.end(),
                     [&](const Unresolved &excluded) { return excluded.path.startsWith(inside); });
    if (found == m_unresolved.end())
        return false;
    refuse(location.url.path(), RefusalReason::UnresolvedExclusion, found->error);
    return true;
}

void CleaningPlanner::refuse(const QByteArray &path, RefusalReason reason, int error)
{
    m_plan.m_refusals.append({path, reason, error});
}

CleaningPlan makeCleaningPlan(const SystemCalls &calls, const FileAccess &access,
                              const QList<SliceToClean> &slices, const ExcludedPaths &excluded)
{
    return CleaningPlanner(calls, access, slices, excluded).plan();
}
