#pragma once

#include "platform/files/FileAccess.h"
#include "platform/system/FileStatus.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "slices/record/Confirmation.h"
#include "slices/record/SliceCatalogue.h"
#include "slices/sizing/ReadOnlyFolders.h"

#include <QList>
#include <map>
#include <memory>
#include <optional>
#include <vector>

class SystemCalls;

/// What of a slice's locations may go.
enum class RemovalScope {
    Everything,
    /// Regular files only: anything else of such a name stays. A database's journal stays for as
    /// long as the database does.
    RegularFiles,
    /// In a trash's folder "info": the trash info file "X.trashinfo", which says where X came from,
    /// stays for as long as X is in the folder "files" beside it.
    LoneTrashInfo,
};

/// A slice as the user chose it.
struct SliceToClean
{
    QString name;
    FileUrls fileURLs;
    /// When the user chose or confirmed it. What has changed since then stays; by default, all.
    Moment confirmed = {};
    SliceContent content = SliceContent::Folders;
    /// For folders inside the locations, not for the locations themselves.
    ReadOnlyFolders readOnlyFolders = ReadOnlyFolders::Stay;
    RemovalScope whatGoes = RemovalScope::Everything;
    FileUrls kept = {}; ///< in use inside the locations; need not be there
    /// What programs may begin to use during the cleaning, at and inside the locations.
    FileUrls programLocations = {};
    /// What stood at the locations when the user was asked; anything else there stays. Nothing:
    /// whatever stands there is meant.
    std::optional<LocationIdentities> known = {};
    /// When this location is there and is not cleaned, the slice stays too. The location may be
    /// another slice's.
    std::optional<FileUrl> onlyWith = {};
};

/// Why something that was asked for is left alone.
enum class RefusalReason {
    UnknownExclusions,   ///< the exclusions are not known: nothing at all is cleaned
    UnparsableExclusion, ///< a stored exclusion cannot be read: nothing at all is cleaned
    UnresolvedExclusion, ///< an exclusion inside the location cannot be identified, or is gone
    OutsideGrant,        ///< not in the granted folder
    GrantedFolder,       ///< the granted folder itself
    Link,                ///< a link, or reached through one
    NotAFolder,
    NotAFile,        ///< a folder or the like where only a plain file may go
    OtherFileSystem, ///< a mount, or another volume
    Unreadable,      ///< could not be opened or examined; the errno says why
    PartlyListed,    ///< an error ended the listing: nothing more of the folder is removed
    Changed,         ///< replaced or moved since it was planned or entered
    ChangedLater,    ///< it came, was moved or was changed after the user had confirmed
    Unconfined,      ///< the kernel did not confine the threads, although it can
    InUse,           ///< a program is using it, which the user was not told when asked
    StillNeeded,     ///< a record or a journal, whose item is there
    PerhapsNeeded,   ///< a record, whose item was perhaps just being moved to the trash
    RightsChanged,   ///< the cleaning made it writable, and could not give its rights back
    OutOfMemory,     ///< there was no memory to go on
};

/// For whoever goes through all reasons.
inline constexpr RefusalReason kLastRefusalReason = RefusalReason::OutOfMemory;

struct CleaningRefusal
{
    /// The raw path; for an exclusion that cannot be read its stored text.
    QByteArray path;
    RefusalReason reason = RefusalReason::Unreadable;
    int error = 0; ///< errno, 0 where no call failed
};

using ExcludedInodes = std::shared_ptr<const std::vector<std::uint64_t>>;

/// One location of a plan: a folder to be emptied, or a file to be removed.
struct CleaningLocation
{
    QString slice;
    FileUrl url;
    AnchoredPath path;
    SliceContent content = SliceContent::Folders;
    Moment confirmed;      ///< what has changed since then stays
    FileIdentity identity; ///< what was there when the plan was made; anything else is left alone
    /// Whether an exclusion touches the location, so that each item below is judged by its path.
    /// For single files: whether one touches any file of their slice.
    bool isTouched = false;
    ReadOnlyFolders readOnlyFolders = ReadOnlyFolders::Stay;
    RemovalScope whatGoes = RemovalScope::Everything;
};

/// Exactly what a cleaning may remove: locations in order, but single files in a location that is
/// emptied after all others, and what is kept inside them. Only
/// makeCleaningPlan() makes one. A value that holds the granted folder open; any thread.
class CleaningPlan final
{
public:
    const std::vector<CleaningLocation> &locations() const { return m_locations; }
    const QList<CleaningRefusal> &refusals() const { return m_refusals; }
    /// Locations left alone because they are excluded themselves or lie inside an exclusion.
    const FileUrls &excludedLocations() const { return m_excludedLocations; }
    /// Whether the raw path is one of these or lies inside one.
    bool isInExcludedLocation(const QByteArray &path) const
    {
        return m_excludedLocationPaths.match(path + '/') == ExclusionMatch::Whole;
    }

    /// What is kept: the exclusions, and what is in use.
    const ExcludedPaths &excluded() const { return m_excluded; }
    /// Of everything that is kept and was found: it is kept wherever it turns up, under any name.
    const std::vector<FileIdentity> &excludedIdentities() const { return m_excludedIdentities; }
    /// The inode numbers of these on one volume, sorted. Shared, so that each location can have
    /// them; never null.
    ExcludedInodes excludedInodesOn(std::uint64_t device) const;

    /// What programs may begin to use, at and inside the locations; it need not exist.
    const FileUrls &programLocations() const { return m_programLocations; }

private:
    friend class CleaningPlanner;

    std::vector<CleaningLocation> m_locations;
    QList<CleaningRefusal> m_refusals;
    FileUrls m_excludedLocations;
    PrefixSet m_excludedLocationPaths; ///< of these, with a slash at the end
    ExcludedPaths m_excluded;
    std::vector<FileIdentity> m_excludedIdentities;
    std::map<std::uint64_t, ExcludedInodes> m_excludedInodes; ///< by volume
    FileUrls m_programLocations;
};

/// Plans the cleaning of the chosen slices, in their order. What a slice keeps is kept like an
/// exclusion. Fails closed: an exclusion that cannot be read stops everything; an exclusion that
/// cannot be found stops the location around it; a location that is not a plain folder or file of
/// the granted folder's own file system is refused, and so is one that is not what the user was
/// asked about. A location that does not exist is simply not in the plan. A slice that goes only
/// with another location is not in the plan when that location is there and not in the plan. The
/// plan also lists, after all other refusals, what is in use. Touches the file system, so not for
/// the main thread; the caller holds the access, from here until the cleaning is done.
CleaningPlan makeCleaningPlan(const SystemCalls &calls, const FileAccess &access,
                              const QList<SliceToClean> &slices, const ExcludedPaths &excluded,
                              const FileUrls &inUse = {});
