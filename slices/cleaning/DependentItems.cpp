#include "slices/cleaning/DependentItems.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "slices/home/FoundPrograms.h"

#include <cerrno>

bool journalStillNeeded(const SystemCalls &calls, int folder, const QByteArray &name)
{
    const QByteArray database = databaseOfJournal(name);
    if (database.isEmpty())
        return false;
    const auto found = calls.status(folder, database.constData());
    return found || found.error() != ENOENT;
}

void passOverTrashInfoInNeed(const SystemCalls &calls, const AnchoredPath &info,
                             FolderListing &listing)
{
    constexpr QByteArrayView kEnding(".trashinfo");
    const AnchoredPath trash = anchoredEntry(info).folder;
    const auto files =
        openAnchored(calls, {trash.anchor, trash.relativePath + "/files"}, Descent::Strict);
    const bool mayHoldItems = files || files.error() != ENOENT;
    listing.removeIf([&](const char *record) {
        const QByteArray name(record);
        if (!mayHoldItems || !name.endsWith(kEnding))
            return false;
        const auto item = files ? calls.status(files->get(), name.chopped(kEnding.size()))
                                : tl::unexpected(files.error());
        return item || item.error() != ENOENT;
    });
}
