#include "slices/plan/CleaningPlan.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "slices/exclusions/ResolvedExclusions.h"
#include "slices/exclusions/TouchedLocations.h"
#include "slices/plan/LostExclusions.h"

#include <QSet>
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
    void indexIdentities();
    void planSlice(const SliceToClean &slice, const TouchedLocations &touched);
    void planLocation(CleaningLocation location, const SliceToClean &slice);
    void dropWhatGoesWithNothing();
    void putFilesInFoldersLast();
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
    void leaveOut(const FileUrl &url);
    bool refuseUnresolved(const CleaningLocation &location);
    void refuse(const QByteArray &path, RefusalReason reason, int error = 0);

    const SystemCalls &m_calls;
    const FileAccess &m_access;
    const QList<SliceToClean> &m_slices;
    CleaningPlan m_plan;
    LostExclusions m_lost;
    QSet<QByteArray> m_missing; ///< asked for, but not there; texts of URLs
};

CleaningPlan CleaningPlanner::plan(const FileUrls &inUse)
{
    if (!refuseUnparsable()) {
        takeExclusions();
        takeKept();
        indexIdentities();
        const TouchedLocations touched(m_plan.m_excluded.urls());
        for (const SliceToClean &slice : m_slices)
            planSlice(slice, touched);
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
    m_lost = LostExclusions(resolved.lost);
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

void CleaningPlanner::indexIdentities()
{
    std::map<std::uint64_t, std::vector<std::uint64_t>> inodes;
    for (const FileIdentity &identity : m_plan.m_excludedIdentities)
        inodes[identity.device].push_back(identity.inode);
    for (auto &[device, numbers] : inodes) {
        std::sort(numbers.begin(), numbers.end());
        m_plan.m_excludedInodes[device] =
            std::make_shared<const std::vector<std::uint64_t>>(std::move(numbers));
    }
}

void CleaningPlanner::planSlice(const SliceToClean &slice, const TouchedLocations &touched)
{
    m_plan.m_programLocations += slice.programLocations;
    const bool isAnyTouched =
        std::any_of(slice.fileURLs.begin(), slice.fileURLs.end(),
                    [&](const FileUrl &url) { return touched.isTouched(url); });
    for (const FileUrl &url : slice.fileURLs) {
        // As soon as an exclusion touches one file of the slice, all its files are judged: none may
        // slip through because it was listed beside another.
        const bool isTouched =
            slice.content == SliceContent::Files ? isAnyTouched : touched.isTouched(url);
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
    if (isExcludedByPath(location))
        return leaveOut(location.url);
    if (!anchor(location))
        return;
    const auto isKept = examine(location);
    if (!isKept) {
        if (isKept.error().error == ENOENT)
            m_missing.insert(location.url.absoluteString());
        else
            refuse(location.url.path(), isKept.error().reason, isKept.error().error);
    } else if (*isKept) {
        leaveOut(location.url);
    } else if (slice.known && slice.known->value(location.url.path()) != location.identity) {
        refuse(location.url.path(), RefusalReason::ChangedLater);
    } else if (!refuseUnresolved(location)) {
        m_plan.m_locations.push_back(std::move(location));
    }
}

void CleaningPlanner::leaveOut(const FileUrl &url)
{
    m_plan.m_excludedLocations.append(url);
    m_plan.m_excludedLocationPaths.add(url.path() + '/');
}

/// A slice that does not go takes its locations out of the plan, and with them perhaps what a later
/// slice goes with.
void CleaningPlanner::dropWhatGoesWithNothing()
{
    QSet<QByteArray> planned;
    for (const CleaningLocation &location : m_plan.m_locations)
        planned.insert(location.url.absoluteString());
    QSet<QByteArray> dropped;
    for (const SliceToClean &slice : m_slices) {
        const QByteArray with = slice.onlyWith ? slice.onlyWith->absoluteString() : QByteArray();
        if (!slice.onlyWith || m_missing.contains(with) || planned.contains(with))
            continue;
        for (const FileUrl &url : slice.fileURLs) {
            planned.remove(url.absoluteString());
            dropped.insert(url.absoluteString());
        }
    }
    if (!dropped.isEmpty())
        std::erase_if(m_plan.m_locations, [&](const CleaningLocation &location) {
            return dropped.contains(location.url.absoluteString());
        });
}

/// The removal of a single file changes the folder around it, which would look like a change by
/// somebody else when that folder is emptied.
void CleaningPlanner::putFilesInFoldersLast()
{
    PrefixSet folders;
    for (const CleaningLocation &location : m_plan.m_locations) {
        if (location.content == SliceContent::Folders)
            folders.add(location.url.path() + '/');
    }
    std::stable_partition(m_plan.m_locations.begin(), m_plan.m_locations.end(),
                          [&](const CleaningLocation &location) {
                              return location.content != SliceContent::Files ||
                                     folders.match(location.url.path()) != ExclusionMatch::Whole;
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
    const ExcludedInodes inodes = m_plan.excludedInodesOn(identity.device);
    return std::binary_search(inodes->begin(), inodes->end(), identity.inode);
}

bool CleaningPlanner::refuseUnresolved(const CleaningLocation &location)
{
    const auto lost = m_lost.firstPerhapsIn(location.url.path());
    if (lost)
        refuse(location.url.path(), RefusalReason::UnresolvedExclusion, lost->error);
    return lost.has_value();
}

void CleaningPlanner::refuse(const QByteArray &path, RefusalReason reason, int error)
{
    m_plan.m_refusals.append({path, reason, error});
}

ExcludedInodes CleaningPlan::excludedInodesOn(std::uint64_t device) const
{
    static const ExcludedInodes none = std::make_shared<const std::vector<std::uint64_t>>();
    const auto found = m_excludedInodes.find(device);
    return found == m_excludedInodes.end() ? none : found->second;
}

CleaningPlan makeCleaningPlan(const SystemCalls &calls, const FileAccess &access,
                              const QList<SliceToClean> &slices, const ExcludedPaths &excluded,
                              const FileUrls &inUse)
{
    return CleaningPlanner(calls, access, slices, excluded).plan(inUse);
}
