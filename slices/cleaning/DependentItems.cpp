#include "slices/cleaning/DependentItems.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "slices/home/FoundPrograms.h"

#include <cerrno>

namespace {

/// An item whose folder could not be opened is as doubtful as one that could not be looked at.
SystemResult<bool> isThere(const SystemCalls &calls, const SystemResult<int> &folder,
                           const QByteArray &name)
{
    const auto found =
        folder ? calls.status(*folder, name.constData()) : tl::unexpected(folder.error());
    if (!found && found.error() != ENOENT)
        return tl::unexpected(found.error());
    return found.has_value();
}

} // namespace

SystemResult<bool> journalStillNeeded(const SystemCalls &calls, int folder, const QByteArray &name)
{
    const QByteArray database = databaseOfJournal(name);
    return database.isEmpty() ? false : isThere(calls, folder, database);
}

void passOverTrashInfoInNeed(const SystemCalls &calls, const AnchoredPath &info,
                             FolderListing &listing, const ReportDoubt &report)
{
    constexpr QByteArrayView kEnding(".trashinfo");
    const AnchoredPath trash = anchoredEntry(info).folder;
    const auto opened =
        openAnchored(calls, {trash.anchor, trash.relativePath + "/files"}, Descent::Strict);
    const auto files = opened ? SystemResult<int>(opened->get()) : tl::unexpected(opened.error());
    listing.removeIf([&](const char *record) {
        const QByteArray name(record);
        if (!name.endsWith(kEnding))
            return false;
        const auto item = isThere(calls, files, name.chopped(kEnding.size()));
        if (!item)
            report(name, item.error());
        return !item || *item;
    });
}
