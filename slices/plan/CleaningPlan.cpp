#include "slices/plan/CleaningPlan.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "slices/exclusions/ResolvedExclusions.h"

#include <algorithm>
#include <cerrno>

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

    CleaningPlan plan(const FileUrls &inUse);

private:
    bool refuseUnparsable();
    void takeExclusions();
    void takeKept();
    void planSlice(const SliceToClean &slice);
    void planLocation(CleaningLocation location, const SliceToClean &slice);
    void dropWhatGoesWithNothing();
    void putFilesInFoldersLast();
    bool isInPlannedFolder(const CleaningLocation &location) const;
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
    std::vector<ResolvedExclusions::Lost> m_lost;
    QByteArrayList m_folders; ///< planned to be emptied; with a slash at the end
    FileUrls m_missing;       ///< asked for, but not there
};

CleaningPlan CleaningPlanner::plan(const FileUrls &inUse)
{
    if (!refuseUnparsable()) {
        takeExclusions();
        takeKept();
        for (const SliceToClean &slice : m_slices)
            planSlice(slice);
        dropWhatGoesWithNothing();
        putFilesInFoldersLast();
    }
    for (const FileUrl &url : inUse)
        refuse(url.path(), RefusalReason::InUse);
    return std::move(m_plan);
}

bool CleaningPlanner::refuseUnparsable()
{
    for (const QString &text : m_plan.m_excluded.unparsable())
        refuse(text.toUtf8(), RefusalReason::UnparsableExclusion);
    return !m_plan.m_excluded.unparsable().isEmpty();
}

void CleaningPlanner::takeExclusions()
{
    ResolvedExclusions resolved = resolveExclusions(m_calls, m_access, m_plan.m_excluded);
    m_plan.m_excluded = std::move(resolved.paths);
    m_plan.m_excludedIdentities = std::move(resolved.identities);
    m_lost = std::move(resolved.lost);
}

/// An exclusion that is missing stops the cleaning around it. A location of a program that is
/// missing stops nothing.
void CleaningPlanner::takeKept()
{
    ExcludedPaths kept;
    for (const SliceToClean &slice : m_slices) {
        for (const FileUrl &url : slice.kept)
            kept.add(url);
    }
    const ResolvedExclusions resolved = resolveExclusions(m_calls, m_access, kept);
    for (const FileUrl &url : resolved.paths.urls())
        m_plan.m_excluded.add(url);
    m_plan.m_excludedIdentities.insert(m_plan.m_excludedIdentities.end(),
                                       resolved.identities.begin(), resolved.identities.end());
}

void CleaningPlanner::planSlice(const SliceToClean &slice)
{
    m_plan.m_programLocations += slice.programLocations;
    const ExcludedPaths &excluded = m_plan.m_excluded;
    const bool isAnyTouched =
        std::any_of(slice.fileURLs.begin(), slice.fileURLs.end(),
                    [&](const FileUrl &url) { return excluded.touches(url); });
    for (const FileUrl &url : slice.fileURLs) {
        // As soon as an exclusion touches one file of the slice, all its files are judged: none may
        // slip through because it was listed beside another.
        const bool isTouched =
            slice.content == SliceContent::Files ? isAnyTouched : excluded.touches(url);
        planLocation({slice.name,
                      url,
                      {},
                      slice.content,
                      slice.confirmed,
                      {},
                      isTouched,
                      slice.readOnlyFolders,
                      slice.whatGoes},
                     slice);
    }
}

void CleaningPlanner::planLocation(CleaningLocation location, const SliceToClean &slice)
{
    if (isExcludedByPath(location)) {
        m_plan.m_excludedLocations.append(location.url);
        return;
    }
    if (!anchor(location))
        return;
    const auto isKept = examine(location);
    if (!isKept) {
        if (isKept.error().error == ENOENT)
            m_missing.append(location.url);
        else
            refuse(location.url.path(), isKept.error().reason, isKept.error().error);
    } else if (*isKept) {
        m_plan.m_excludedLocations.append(location.url);
    } else if (slice.known && slice.known->value(location.url.path()) != location.identity) {
        refuse(location.url.path(), RefusalReason::ChangedLater);
    } else if (!refuseUnresolved(location)) {
        m_plan.m_locations.push_back(std::move(location));
    }
}

void CleaningPlanner::dropWhatGoesWithNothing()
{
    std::vector<CleaningLocation> &locations = m_plan.m_locations;
    for (const SliceToClean &slice : m_slices) {
        const bool goes = !slice.onlyWith || m_missing.contains(*slice.onlyWith) ||
                          std::ranges::find(locations, *slice.onlyWith, &CleaningLocation::url) !=
                              locations.end();
        if (!goes)
            std::erase_if(locations, [&](const CleaningLocation &location) {
                return slice.fileURLs.contains(location.url);
            });
    }
}

/// The removal of a single file changes the folder around it, which would look like a change by
/// somebody else when that folder is emptied.
void CleaningPlanner::putFilesInFoldersLast()
{
    for (const CleaningLocation &location : m_plan.m_locations) {
        if (location.content == SliceContent::Folders)
            m_folders.append(location.url.path() + '/');
    }
    std::stable_partition(
        m_plan.m_locations.begin(), m_plan.m_locations.end(),
        [this](const CleaningLocation &location) { return !isInPlannedFolder(location); });
}

bool CleaningPlanner::isInPlannedFolder(const CleaningLocation &location) const
{
    if (location.content != SliceContent::Files)
        return false;
    return std::any_of(m_folders.begin(), m_folders.end(), [&](const QByteArray &folder) {
        return location.url.path().startsWith(folder);
    });
}

bool CleaningPlanner::isExcludedByPath(const CleaningLocation &location) const
{
    const ExcludedPaths &excluded = m_plan.m_excluded;
    const QByteArray path = location.url.path();
    const ExclusionMatch byPath = excluded.matchByPath(path + '/');
    if (location.content == SliceContent::Folders)
        return byPath == ExclusionMatch::Whole;
    // An item of a slice of files goes or stays as a whole: one that holds something excluded stays
    // too.
    const QByteArray text = location.url.isFolder() ? path + '/' : path;
    return byPath != ExclusionMatch::None ||
           (location.isTouched && excluded.matchByText(text) != ExclusionMatch::None);
}

/// Finds the location below the granted folder, and refuses a location that is not there.
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

/// Opens folder by folder on the way to the location, and notes what is there. True when the
/// location, or a folder around it, is an excluded one, whatever its name.
tl::expected<bool, CleaningPlanner::Obstacle>
CleaningPlanner::examine(CleaningLocation &location) const
{
    QByteArrayList names = location.path.relativePath.split('/');
    const QByteArray fileName =
        location.content == SliceContent::Files ? names.takeLast() : QByteArray();
    FileDescriptor held;
    int folder = location.path.anchor->get();
    auto identity = m_calls.identityOf(folder);
    const std::uint64_t device = identity ? identity->device : 0;
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
    if (identity && !isExcluded(*identity) && !fileName.isEmpty()) {
        if (location.whatGoes == RemovalScope::RegularFiles) {
            const auto status = m_calls.status(folder, fileName.constData());
            if (!status)
                return tl::unexpected(Obstacle{RefusalReason::Unreadable, status.error()});
            if (status->kind != FileKind::Regular)
                return tl::unexpected(Obstacle{RefusalReason::NotAFile, 0});
        }
        identity = m_calls.identity(folder, fileName.constData());
    }
    if (!identity)
        return tl::unexpected(Obstacle{RefusalReason::Unreadable, identity.error()});
    if (identity->device != device) // a sub-volume opens like any folder
        return tl::unexpected(Obstacle{RefusalReason::OtherFileSystem, EXDEV});
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
        return excluded.inodeId() == identity.inodeId();
    });
}

/// An exclusion that cannot be found could be anything in the folder that holds it by its path. One
/// that cannot be looked at could be anything at all.
bool CleaningPlanner::refuseUnresolved(const CleaningLocation &location)
{
    const QByteArray inside = location.url.path() + '/';
    const auto found = std::find_if(m_lost.begin(), m_lost.end(), [&](const auto &excluded) {
        return excluded.isHidden || excluded.path.startsWith(inside);
    });
    if (found == m_lost.end())
        return false;
    refuse(location.url.path(), RefusalReason::UnresolvedExclusion, found->error);
    return true;
}

void CleaningPlanner::refuse(const QByteArray &path, RefusalReason reason, int error)
{
    m_plan.m_refusals.append({path, reason, error});
}

CleaningPlan makeCleaningPlan(const SystemCalls &calls, const FileAccess &access,
                              const QList<SliceToClean> &slices, const ExcludedPaths &excluded,
                              const FileUrls &inUse)
{
    return CleaningPlanner(calls, access, slices, excluded).plan(inUse);
}
