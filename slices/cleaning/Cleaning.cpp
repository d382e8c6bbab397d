#include "slices/cleaning/Cleaning.h"

#include "platform/base/Log.h"
#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "slices/cleaning/DependentItems.h"
#include "slices/cleaning/KnownReasons.h"
#include "slices/cleaning/TrashRecords.h"
#include "slices/removal/FolderEmptier.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <set>

namespace {

constexpr std::size_t kMaxCandidatesLogged = 1000;

FileUrlKind urlKind(FileKind kind)
{
    return kind == FileKind::Folder ? FileUrlKind::Folder : FileUrlKind::File;
}

/// A folder of the plan that is open and is being emptied, part after part.
struct Emptying
{
    const CleaningLocation &location;
    const HeldFolder &folder;
    Protection &protection; ///< grows between the parts
    FolderEmptier &emptier;
};

/// Takes a plan location by location.
class CleaningRun final
{
public:
    CleaningRun(const SystemCalls &calls, const CleaningPlan &plan, std::stop_token stop,
                const InUseCheck &inUse, AsideNames *asideNames)
        : m_calls(calls),
          m_plan(plan),
          m_stop(std::move(stop)),
          m_inUse(inUse),
          m_asideNames(asideNames),
          m_builder(plan.refusals()),
          m_trashRecords(calls, plan),
          m_space(kListingSpace)
    {
    }

    CleaningReport run();

private:
    void cleanNext(std::size_t index);
    void clean(const CleaningLocation &location);
    void emptyFolder(const CleaningLocation &location, const FileUrls &inUse);
    std::vector<FolderListing> takeOutOfPrograms(const CleaningLocation &location,
                                                 FolderListing &listing) const;
    void removeUnlessInUse(const Emptying &emptying, FolderListing entry);
    void keepInUse(const Emptying &emptying, const FileUrl &location);
    void removeFile(const CleaningLocation &location);
    void removeEntry(const CleaningLocation &location, int folder, const Protection &protection,
                     FolderListing entry);
    bool staysWithItsItem(const CleaningLocation &location, int folder,
                          const Protection &protection);
    bool isAsPlanned(const CleaningLocation &location, const SystemResult<FileIdentity> &found);
    void refuse(const CleaningLocation &location, RefusalReason reason, int error);

    void logContents(const CleaningLocation &location, const FolderListing &listing);
    void logFiles(std::size_t first);

    const SystemCalls &m_calls;
    const CleaningPlan &m_plan;
    std::stop_token m_stop;
    const InUseCheck &m_inUse;
    AsideNames *m_asideNames;
    CleaningReportBuilder m_builder;
    LinkedFiles m_linkedFiles;
    const TrashRecords m_trashRecords;
    std::vector<char> m_space;
};

CleaningReport CleaningRun::run()
{
    const auto &locations = m_plan.locations();
    for (std::size_t i = 0; i < locations.size() && !m_stop.stop_requested(); ++i)
        cleanNext(i);
    return m_builder.finish(m_stop.stop_requested());
}

/// Goes on with the next location when the memory runs out: some of it is free again by then.
void CleaningRun::cleanNext(std::size_t index)
{
    const CleaningLocation &location = m_plan.locations()[index];
    try {
        if (location.content == SliceContent::Files)
            logFiles(index);
        clean(location);
    } catch (const std::bad_alloc &) {
        m_builder.tell([&] { return location.url.path(); }, RefusalReason::OutOfMemory, ENOMEM);
    }
}

void CleaningRun::clean(const CleaningLocation &location)
{
    const FileUrls inUse = m_inUse ? m_inUse(location, location.url) : FileUrls();
    if (inUse.contains(location.url))
        refuse(location, RefusalReason::InUse, 0);
    else if (location.content == SliceContent::Folders)
        emptyFolder(location, inUse);
    else
        removeFile(location);
}

void CleaningRun::emptyFolder(const CleaningLocation &location, const FileUrls &inUse)
{
    const auto folder = openAnchored(m_calls, location.path, Descent::Strict);
    if (!folder)
        return refuse(location, refusalReason(folder.error()), folder.error());
    const auto identity = m_calls.identityOf(folder->get());
    if (!isAsPlanned(location, identity))
        return;
    const auto clockAhead = m_calls.clockDifference(folder->get());
    if (!clockAhead)
        return refuse(location, RefusalReason::Unreadable, clockAhead.error());
    const LaterChanges changes(m_calls, location.confirmed, *clockAhead);
    Protection protection(m_plan, location, identity->device);
    const EntryOrder order = m_calls.fileSystemTraits(folder->get()).gainsByThreads
                                 ? EntryOrder::ByInode
                                 : EntryOrder::AsListed;
    FolderEmptier emptier(m_calls,
                          {location, protection, changes, m_linkedFiles, m_builder,
                           itemOfFilesIn(location), m_asideNames},
                          folder->get(), order, m_stop);
    auto listing = emptier.steps().list(folder->get(), m_space);
    if (!listing)
        return refuse(location, RefusalReason::PartlyListed, listing.error());
    if (location.whatGoes == RemovalScope::LoneTrashInfo)
        m_trashRecords.passOver(location, KnownReasons(m_plan, protection, m_builder), m_builder,
                                *listing);
    if (!protection.isTouched())
        logContents(location, *listing);
    const HeldFolder held{folder->get(),
                          location.url.path() + '/',
                          EntryPolicy::Logged,
                          emptier.steps().stateOf(folder->get()),
                          {nullptr, identity->inode}};
    const Emptying emptying{location, held, protection, emptier};
    for (const FileUrl &used : inUse)
        keepInUse(emptying, used);
    std::vector<FolderListing> ofPrograms = takeOutOfPrograms(location, *listing);
    emptier.remove(held, std::move(*listing));
    for (FolderListing &entry : ofPrograms)
        removeUnlessInUse(emptying, std::move(entry));
}

/// Takes the entries at, or on the way to, the locations of programs out of the listing, each by
/// itself. They are removed last, so that the programs can be checked right before.
std::vector<FolderListing> CleaningRun::takeOutOfPrograms(const CleaningLocation &location,
                                                          FolderListing &listing) const
{
    const QByteArray inside = location.url.path() + '/';
    std::set<QByteArray> names;
    for (const FileUrl &used : m_plan.programLocations()) {
        if (used.path().startsWith(inside))
            names.insert(used.path().sliced(inside.size()).split('/').constFirst());
    }
    if (names.empty() || !m_inUse)
        return {};
    return listing.takeOut([&](const char *name) { return names.contains(name); });
}

void CleaningRun::removeUnlessInUse(const Emptying &emptying, FolderListing entry)
{
    if (m_stop.stop_requested())
        return;
    const CleaningLocation &location = emptying.location;
    const FileUrl url = location.url.appending(entry.name(entry.at(0)), urlKind(entry.at(0).kind));
    for (const FileUrl &used : m_inUse(location, url))
        keepInUse(emptying, used);
    emptying.emptier.remove(emptying.folder, std::move(entry));
}

/// Reports nothing for what was kept before: that has been reported already.
void CleaningRun::keepInUse(const Emptying &emptying, const FileUrl &location)
{
    const auto &[anchor, relativePath] = emptying.location.path;
    if (emptying.protection.match(location.path(), FileKind::Folder) == ExclusionMatch::Whole)
        return;
    emptying.protection.keep(location);
    const QByteArray inside = location.path().sliced(emptying.location.url.path().size());
    const auto found = statusAnchored(m_calls, {anchor, relativePath + inside});
    if (found || found.error() != ENOENT)
        m_builder.refused(location.path(), RefusalReason::InUse, 0);
}

void CleaningRun::removeFile(const CleaningLocation &location)
{
    const auto [around, name] = anchoredEntry(location.path);
    const auto folder = openAnchored(m_calls, around, Descent::Strict);
    if (!folder)
        return refuse(location, refusalReason(folder.error()), folder.error());
    const auto identity = m_calls.identity(folder->get(), name.constData());
    if (!isAsPlanned(location, identity))
        return;
    const auto status = m_calls.status(folder->get(), name.constData());
    if (!status)
        return refuse(location, RefusalReason::Unreadable, status.error());
    // The name may stand for something else by now. From here on it is removed as what it is now.
    if (location.whatGoes == RemovalScope::RegularFiles && status->kind != FileKind::Regular)
        return refuse(location, RefusalReason::NotAFile, 0);
    const Protection protection(m_plan, location, identity->device);
    if (!staysWithItsItem(location, folder->get(), protection))
        removeEntry(location, folder->get(), protection,
                    FolderListing::ofEntry({name.constData(), status->inode, status->kind}));
}

void CleaningRun::removeEntry(const CleaningLocation &location, int folder,
                              const Protection &protection, FolderListing entry)
{
    const auto clockAhead = m_calls.clockDifference(folder);
    if (!clockAhead)
        return refuse(location, RefusalReason::Unreadable, clockAhead.error());
    const auto status = m_calls.statusOf(folder);
    if (!status)
        return refuse(location, RefusalReason::Unreadable, status.error());
    const LaterChanges changes(m_calls, location.confirmed, *clockAhead);
    const QByteArray path = location.url.path();
    const HeldFolder held{folder,
                          path.first(path.lastIndexOf('/') + 1),
                          EntryPolicy::Logged,
                          FolderState::Changed,
                          {nullptr, status->inode}};
    FolderEmptier(m_calls,
                  {location, protection, changes, m_linkedFiles, m_builder, itemOfFilesIn(location),
                   m_asideNames},
                  folder, EntryOrder::AsListed, m_stop)
        .removeSingle(held, std::move(entry));
}

bool CleaningRun::staysWithItsItem(const CleaningLocation &location, int folder,
                                   const Protection &protection)
{
    const auto [around, name] = anchoredEntry(location.path);
    const ItemOfFile itemOf = itemOfFilesIn(location);
    const QByteArray item = itemOf ? itemOf(name) : QByteArray();
    const auto found =
        item.isEmpty() ? tl::unexpected(ENOENT) : m_calls.status(folder, item.constData());
    if (!found && found.error() == ENOENT)
        return false;
    const QByteArray path = location.url.path().chopped(name.size()) + item;
    if (!KnownReasons(m_plan, protection, m_builder).explain(path, found))
        refuse(location, RefusalReason::StillNeeded, found ? 0 : found.error());
    return true;
}

bool CleaningRun::isAsPlanned(const CleaningLocation &location,
                              const SystemResult<FileIdentity> &found)
{
    if (!found)
        refuse(location, RefusalReason::Unreadable, found.error());
    else if (*found != location.identity)
        refuse(location, RefusalReason::Changed, ESTALE);
    else
        return true;
    return false;
}

void CleaningRun::refuse(const CleaningLocation &location, RefusalReason reason, int error)
{
    if (error != ENOENT)
        m_builder.refused(location.url.path(), reason, error);
}

void CleaningRun::logContents(const CleaningLocation &location, const FolderListing &listing)
{
    if (!m_builder.logsCandidates())
        return;
    FileUrls candidates;
    for (std::size_t i = 0; i < std::min(listing.size(), kMaxCandidatesLogged); ++i) {
        const auto &entry = listing.at(i);
        candidates.append(location.url.appending(listing.name(entry), urlKind(entry.kind)));
    }
    m_builder.logCandidates(candidates, listing.size());
}

/// The files of one slice follow each other in the plan; all are logged before the first is
/// removed.
void CleaningRun::logFiles(std::size_t first)
{
    const auto &locations = m_plan.locations();
    const auto isOfSameSlice = [&](const CleaningLocation &other) {
        return other.slice == locations[first].slice && other.content == locations[first].content;
    };
    if (locations[first].isTouched || (first > 0 && isOfSameSlice(locations[first - 1])))
        return;
    FileUrls candidates;
    for (std::size_t i = first; i < locations.size() && isOfSameSlice(locations[i]); ++i)
        candidates.append(locations[i].url);
    const auto total = static_cast<std::size_t>(candidates.size());
    candidates.resize(static_cast<qsizetype>(std::min(total, kMaxCandidatesLogged)));
    m_builder.logCandidates(candidates, total);
}

} // namespace

CleaningReport performCleaning(const SystemCalls &calls, const CleaningPlan &plan,
                               std::stop_token stop, const InUseCheck &inUse,
                               AsideNames *asideNames)
{
    try {
        return CleaningRun(calls, plan, std::move(stop), inUse, asideNames).run();
    } catch (const std::bad_alloc &) {
        // It got no further than its beginning: a run ends with a report.
        CleaningReportBuilder builder(plan.refusals());
        builder.tell([] { return QByteArray(); }, RefusalReason::OutOfMemory, ENOMEM);
        return builder.finish(false);
    }
}
