#include "slices/SlicesToClean.h"

#include "slices/Info.h"
#include "slices/ProgramsInUse.h"

namespace {

CleaningMode modeOf(const QString &slice)
{
    const std::optional<SliceKind> kind = sliceKindNamed(slice);
    const bool areFiles = kind && sliceCatalogue()[indexOf(*kind)].content == SliceContent::Files;
    return areFiles ? CleaningMode::TheVeryFiles : CleaningMode::ContentsOfFolders;
}

/// What is in the freedesktop places of single files is written by the programs as plain files; the
/// fixed layout says nothing of the kind, and large files may be packages.
WhatGoes whatGoesOf(const HomeLayout &layout, const QString &slice)
{
    const bool isBrowserData = sliceKindNamed(slice) == SliceKind::BrowserData;
    return layout.kind() == HomeKind::Freedesktop && isBrowserData ? WhatGoes::RegularFiles
                                                                   : WhatGoes::Everything;
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

/// Each folder of the trash by itself, for each has a rule of its own.
QList<SliceToClean> trashToClean(const HomeLayout &layout, const QString &name,
                                 const FileUrls &locations)
{
    QList<SliceToClean> slices;
    const FileUrls books = folderSizeBooks(layout, locations);
    if (!books.isEmpty())
        slices.append({name, books, CleaningMode::TheVeryFiles, ReadOnlyFolders::Stay,
                       WhatGoes::RegularFiles});
    for (const FileUrl &location : locations) {
        const bool holdsRecords = location.path().endsWith("/info");
        slices.append({name,
                       {location},
                       CleaningMode::ContentsOfFolders,
                       ReadOnlyFolders::Emptied,
                       holdsRecords ? WhatGoes::LoneRecords : WhatGoes::Everything});
    }
    return slices;
}

} // namespace

QList<SliceToClean> slicesToClean(const HomeLayout &layout,
                                  const std::vector<std::shared_ptr<Info>> &chosen)
{
    QList<SliceToClean> slices;
    for (const auto &record : chosen) {
        const FileUrls locations = record->fileURLs().value_or(FileUrls());
        if (!locations.isEmpty() && layout.isInTrash(locations.constFirst()))
            slices += trashToClean(layout, record->name(), locations);
        else
            slices.append({record->name(), locations, modeOf(record->name()), ReadOnlyFolders::Stay,
                           whatGoesOf(layout, record->name()), record->kept(),
                           programPlaces(layout, locations)});
    }
    return slices;
}
