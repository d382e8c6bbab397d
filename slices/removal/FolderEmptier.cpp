#include "slices/removal/FolderEmptier.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "slices/removal/ConfinedRun.h"
#include "slices/removal/ExactRemoval.h"
#include "slices/removal/ParallelRemover.h"

#include <cerrno>
#include <utility>

namespace {

/// While one thread waits for the disk, or for a folder that another changes, the others work. More
/// than four gain nothing.
constexpr unsigned kThreads = 4;

EntryRef refTo(const HeldFolder &folder, const EmptiedFolders::Folder &inside)
{
    return {folder.descriptor, folder.path, inside.name.constData(), folder.state};
}

} // namespace

FolderEmptier::FolderEmptier(const SystemCalls &calls, const RemovalContext &context, int location,
                             EntryOrder order, std::stop_token stop)
    : m_calls(calls),
      m_context(context),
      m_leftAside(calls, context.builder),
      m_steps(calls, context, order, m_leftAside),
      m_location(location),
      m_order(order),
      m_stop(std::move(stop)),
      m_space(kListingSpace)
{
}

void FolderEmptier::remove(const HeldFolder &folder, FolderListing entries)
{
    if (entries.size() == 0)
        return;
    if (m_context.protection.isTouched()) {
        removeBesideKept(folder, {}, entries);
        while (!m_onTheWay.empty() && !m_stop.stop_requested()) {
            const FolderOnTheWay next = std::move(m_onTheWay.back());
            m_onTheWay.pop_back();
            goOn(next);
        }
        return;
    }
    ConfinedRun run(m_calls.confinement());
    run.addLayer();
    run.allow(m_location, FolderRights::Emptying);
    confined(run, folder.path, [&] { removeAll(folder, std::move(entries)); });
}

void FolderEmptier::removeSingle(const HeldFolder &folder, FolderListing entry)
{
    EmptiedFolders emptied;
    if (entry.at(0).kind == FileKind::Folder)
        emptyPackage(folder, std::exchange(entry, {}), emptied);
    removeFiles(folder, entry, emptied);
}

/// First the folders beside are emptied, by a thread that reaches nothing else. Then the files
/// beside and the empty folders are removed by a thread that opens no folder, so that it cannot
/// reach into one that is kept.
void FolderEmptier::removeBesideKept(const HeldFolder &folder, const QByteArray &relativePath,
                                     const FolderListing &entries)
{
    if (!m_steps.isInPlace(folder.descriptor, {}, folder.way.around))
        return m_steps.abandon(folder.path.chopped(1), ESTALE);
    Parts parts = judge(folder, relativePath, entries);
    EmptiedFolders emptied;
    if (parts.folders.size() > 0)
        emptyFolders(folder, std::move(parts.folders), emptied);
    removeFiles(folder, parts.files, emptied);
}

FolderEmptier::Parts FolderEmptier::judge(const HeldFolder &folder, const QByteArray &relativePath,
                                          const FolderListing &entries)
{
    Parts parts;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const FolderListing::Entry &entry = entries.at(i);
        const char *const name = entries.name(entry);
        const auto judged =
            m_steps.judge({folder.descriptor, folder.path, name, folder.state}, entry);
        if (judged.match == ExclusionMatch::OnTheWay)
            m_onTheWay.push_back({relativePath, name, entry, folder.state, &folder.way});
        // Only who removes the files may give an entry of this folder its own name back.
        const bool isEntered = judged.kind == FileKind::Folder && !ExactRemoval::isPrivate(name);
        if (judged.match == ExclusionMatch::None)
            (isEntered ? parts.folders : parts.files).append({name, entry.inode, judged.kind});
    }
    // What is on the way outlives the folder that is held now.
    if (!m_onTheWay.empty() && m_onTheWay.back().way == &folder.way) {
        m_ways.push_back(folder.way);
        for (FolderOnTheWay &onTheWay : m_onTheWay) {
            if (onTheWay.way == &folder.way)
                onTheWay.way = &m_ways.back();
        }
    }
    return parts;
}

/// Opens it anew from the location on, so that few folders are open at a time however many there
/// are on the way.
void FolderEmptier::goOn(const FolderOnTheWay &onTheWay)
{
    const auto &[anchor, location] = m_context.location.path;
    const QByteArray inside =
        onTheWay.around.isEmpty() ? QByteArray() : '/' + onTheWay.around.chopped(1);
    const QByteArray aroundPath = m_context.location.url.path() + '/' + onTheWay.around;
    const auto around = openAnchored(m_calls, {anchor, location + inside}, Descent::Strict);
    if (!around)
        return m_context.builder.refused(aroundPath.chopped(1), refusalReason(around.error()),
                                         around.error());
    const EntryRef ref{around->get(), aroundPath, onTheWay.name.constData(), onTheWay.state};
    const auto entered = m_steps.enter(ref, onTheWay.entry, m_space);
    if (!entered)
        return;
    const HeldFolder folder{entered->descriptor.get(),
                            ref.path() + '/',
                            EntryPolicy::Logged,
                            entered->state,
                            {onTheWay.way, entered->inode}};
    removeBesideKept(folder, onTheWay.around + onTheWay.name + '/', entered->listing);
}

void FolderEmptier::emptyFolders(HeldFolder folder, FolderListing folders, EmptiedFolders &emptied)
{
    ConfinedRun run(m_calls.confinement());
    // A folder that is moved out of the location is out of reach by the first layer.
    run.addLayer();
    run.allow(m_location, FolderRights::Emptying);
    run.addLayer();
    run.allow(m_location, FolderRights::Listing);
    allowEach(run, folder, folders);
    folder.emptied = &emptied;
    confined(run, folder.path, [&] { removeAll(folder, std::move(folders)); });
}

void FolderEmptier::emptyPackage(HeldFolder folder, FolderListing package, EmptiedFolders &emptied)
{
    ConfinedRun run(m_calls.confinement());
    run.addLayer();
    allowEach(run, folder, package);
    folder.emptied = &emptied;
    confined(run, folder.path, [&] { removeAll(folder, std::move(package)); });
}

void FolderEmptier::allowEach(ConfinedRun &run, const HeldFolder &folder,
                              const FolderListing &folders) const
{
    for (std::size_t i = 0; i < folders.size(); ++i) {
        const char *const name = folders.name(folders.at(i));
        const auto opened = m_calls.openFolder(folder.descriptor, name, Descent::Strict);
        const auto status =
            opened ? m_calls.statusOf(opened->get()) : tl::unexpected(opened.error());
        if (status && !m_context.protection.keepsInode(status->inode))
            run.allow(opened->get(), FolderRights::Emptying);
    }
}

void FolderEmptier::removeFiles(const HeldFolder &folder, const FolderListing &files,
                                EmptiedFolders &emptied)
{
    if (files.size() == 0 && emptied.isEmpty())
        return;
    ConfinedRun run(m_calls.confinement());
    run.addLayer();
    run.allow(m_location, FolderRights::RemovingEntries);
    confined(run, folder.path, [&] {
        removeAll(folder, files);
        removeEmptied(folder, emptied);
    });
    for (EmptiedFolders::Folder &empty : emptied.all())
        m_steps.tellOfRights(refTo(folder, empty), empty.rights);
}

void FolderEmptier::removeEmptied(const HeldFolder &folder, EmptiedFolders &emptied)
{
    for (EmptiedFolders::Folder &empty : emptied.all()) {
        if (!m_stop.stop_requested())
            m_steps.removeFolder(refTo(folder, empty), empty.inode, empty.rights);
    }
}

void FolderEmptier::removeAll(const HeldFolder &folder, FolderListing entries)
{
    if (m_order == EntryOrder::AsListed)
        SequentialRemover(m_steps, m_stop).removeListed(folder, std::move(entries));
    else
        ParallelRemover(m_steps, m_stop, kThreads).removeListed(folder, std::move(entries));
}

void FolderEmptier::confined(ConfinedRun &run, const QByteArray &path,
                             const std::function<void()> &step)
{
    if (m_stop.stop_requested())
        return;
    const auto ran = run.run(step);
    if (!ran && ran.error() == ENOMEM)
        m_steps.ranOutOfMemory(path);
    else if (!ran)
        m_context.builder.refused(path.chopped(1), RefusalReason::Unconfined, ran.error());
    m_leftAside.giveNamesBack();
}
