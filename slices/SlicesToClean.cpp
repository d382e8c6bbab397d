#include "slices/SlicesToClean.h"

#include "slices/Info.h"

namespace {

CleaningMode modeOf(const QString &slice)
{
    const std::optional<SliceKind> kind = sliceKindNamed(slice);
    const bool areFiles = kind && sliceCatalogue()[indexOf(*kind)].content == SliceContent::Files;
    return areFiles ? CleaningMode::TheVeryFiles : CleaningMode::ContentsOfFolders;
}

/// "…/Trash/directorysizes" for "…/Trash/files".
FileUrls folderSizeBooks(const HomeLayout &layout, const FileUrls &locations)
{
    FileUrls books;
    for (const FileUrl &location : locations) {
        const QByteArray path = location.path();
        if (layout.isInTrash(location) && path.endsWith("/files"))
            books.append(FileUrl::fromPath(path.first(path.lastIndexOf('/')) + "/directorysizes",
                                           FileUrlKind::File));
    }
    return books;
}

} // namespace

QList<SliceToClean> slicesToClean(const HomeLayout &layout,
                                  const std::vector<std::shared_ptr<Info>> &chosen)
{
    QList<SliceToClean> slices;
    for (const auto &record : chosen) {
        const FileUrls locations = record->fileURLs().value_or(FileUrls());
        const FileUrls books = folderSizeBooks(layout, locations);
        if (!books.isEmpty())
            slices.append({record->name(), books, CleaningMode::TheVeryFiles});
        const bool isTrash = !locations.isEmpty() && layout.isInTrash(locations.constFirst());
        slices.append({record->name(), locations, modeOf(record->name()),
                       isTrash ? ReadOnlyFolders::Emptied : ReadOnlyFolders::Stay});
    }
    return slices;
}
