#include "slices/removal/AsideSearch.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/files/FolderListing.h"
#include "platform/system/SystemCalls.h"
#include "slices/removal/AsideNames.h"
#include "slices/removal/ExactRemoval.h"

#include <cerrno>

namespace {

AnchoredPath inside(const AnchoredPath &folder, const QByteArray &name)
{
    const QByteArray &path = folder.relativePath;
    return {folder.anchor, path.isEmpty() ? name : path + '/' + name};
}

} // namespace

AsideSearch::AsideSearch(const SystemCalls &calls, QString noteFolder, std::stop_token stop)
    : m_calls(calls),
      m_noteFolder(std::move(noteFolder)),
      m_stop(std::move(stop)),
      m_space(kListingSpace)
{
}

/// Opens each folder anew from the anchor on, so that few are open at a time, however deep the
/// tree.
void AsideSearch::lookThrough(const AnchoredPath &folder)
{
    std::vector<AnchoredPath> folders{folder};
    while (!folders.empty()) {
        const AnchoredPath next = std::move(folders.back());
        folders.pop_back();
        for (const QByteArray &name : putBackIn(next))
            folders.push_back(inside(next, name));
    }
}

void AsideSearch::lookIn(const AnchoredPath &folder)
{
    putBackIn(folder);
}

/// Returns the folders in it.
QByteArrayList AsideSearch::putBackIn(const AnchoredPath &folder)
{
    const auto opened =
        m_stop.stop_requested() ? tl::unexpected(ECANCELED) : openOnVolume(m_calls, folder);
    const auto listing = opened ? FolderListing::ofFolder(m_calls, opened->get(), m_space)
                                : tl::unexpected(opened.error());
    if (!listing) {
        // What is no folder any more, or lies elsewhere, holds nothing of ours.
        const int error = listing.error();
        m_isComplete = m_isComplete &&
                       (error == ENOENT || error == ENOTDIR || error == ELOOP || error == EXDEV);
        return {};
    }
    QByteArrayList folders;
    for (std::size_t i = 0; i < listing->size(); ++i) {
        const FolderListing::Entry &entry = listing->at(i);
        QByteArray name = listing->name(entry);
        if (AsideNames::isPrivate(name.constData()))
            name = takenOutOfSlot(opened->get(), name.constData());
        if (name.isEmpty())
            continue; // it has gone
        if (AsideNames::isPrivate(name.constData())) {
            m_left.append(inside(folder, name).relativePath);
        } else if (ExactRemoval::isPrivate(name.constData())) {
            const auto back = ExactRemoval(m_calls).putBack(opened->get(), name.constData());
            if (back || back.error() != ENOENT)
                (back ? m_found : m_left).append(inside(folder, name).relativePath);
        }
        // An empty folder may have been moved aside, and nothing lies in it.
        else if (entry.kind == FileKind::Folder || entry.kind == FileKind::Unknown)
            folders.append(name);
    }
    return folders;
}

/// What lies in a slot gets the private name that tells its own: the notes do not stay.
QByteArray AsideSearch::takenOutOfSlot(int folder, const char *slot) const
{
    const auto status = m_calls.status(folder, slot);
    if (!status)
        return status.error() == ENOENT ? QByteArray() : QByteArray(slot);
    const QByteArray name =
        ExactRemoval::privateName(AsideNames::nameOf(m_calls, m_noteFolder, slot, status->inode));
    const auto moved = ExactRemoval(m_calls).moveToFree(folder, slot, name.constData());
    return moved ? name : QByteArray(slot);
}
