#include "slices/cleaning/SlicesToClean.h"

#include "slices/home/ProgramsInUse.h"
#include "slices/record/Info.h"

namespace {

SliceContent contentOf(const Info &record)
{
    return infoIsFilesNotFolders(record) ? SliceContent::Files : SliceContent::Folders;
}

/// In a freedesktop home, programs write the single files of a slice as plain files. The fixed
/// layout promises nothing of the kind, and large files may be packages.
RemovalScope whatGoesOf(const HomeLayout &layout, const QString &slice)
{
    const bool isBrowserData = sliceKindNamed(slice) == SliceKind::BrowserData;
    return layout.kind() == HomeKind::Freedesktop && isBrowserData ? RemovalScope::RegularFiles
                                                                   : RemovalScope::Everything;
}

/// "…/Trash/directorysizes" for "…/Trash/files"; nothing for the other folders.
std::optional<FileUrl> folderSizeBook(const FileUrl &location)
{
    const QByteArray path = location.path();
    if (!path.endsWith("/files"))
        return std::nullopt;
    return FileUrl::fromPath(path.first(path.lastIndexOf('/')) + "/directorysizes",
                             FileUrlKind::File);
}

/// The file that lists the sizes of the folders in the trash, if this folder has one beside it.
std::optional<SliceToClean> folderSizesToClean(const QString &name, const FileUrl &location)
{
    const std::optional<FileUrl> book = folderSizeBook(location);
    if (!book)
        return std::nullopt;
    SliceToClean slice;
    slice.name = name;
    slice.fileURLs = {*book};
    slice.content = SliceContent::Files;
    slice.whatGoes = RemovalScope::RegularFiles;
    slice.onlyWith = location;
    return slice;
}

/// One folder of the trash: each has a rule of its own.
SliceToClean trashToClean(const QString &name, const FileUrl &location)
{
    const bool holdsTrashInfo = location.path().endsWith("/info");
    SliceToClean slice;
    slice.name = name;
    slice.fileURLs = {location};
    slice.readOnlyFolders = ReadOnlyFolders::Emptied;
    slice.whatGoes = holdsTrashInfo ? RemovalScope::LoneTrashInfo : RemovalScope::Everything;
    return slice;
}

/// All of a slice but the trash.
SliceToClean locationsToClean(const HomeLayout &layout, const Info &record,
                              const FileUrls &locations)
{
    return {.name = record.name(),
            .fileURLs = locations,
            .content = contentOf(record),
            .whatGoes = whatGoesOf(layout, record.name()),
            .kept = record.kept(),
            .programLocations = programLocations(layout, locations)};
}

/// What the user chose is meant as it was then, not as it was when the question was asked.
Confirmation consentTo(const Info &record, const Confirmation &confirmation)
{
    const std::optional<Confirmation> choice = record.choice();
    if (!choice)
        return confirmation;
    LocationIdentities locations = confirmation.locations;
    locations.insert(choice->locations);
    return {choice->moment, locations};
}

} // namespace

QList<SliceToClean> slicesToClean(const HomeLayout &layout,
                                  const std::vector<std::shared_ptr<Info>> &chosen,
                                  const Confirmation &confirmation)
{
    QList<SliceToClean> slices;
    for (const auto &record : chosen) {
        const qsizetype first = slices.size();
        const FileUrls locations = record->fileURLs().value_or(FileUrls());
        if (!locations.isEmpty() && layout.isInTrash(locations.constFirst())) {
            for (const FileUrl &location : locations) {
                if (const auto sizes = folderSizesToClean(record->name(), location))
                    slices.append(*sizes);
                slices.append(trashToClean(record->name(), location));
            }
        } else {
            slices.append(locationsToClean(layout, *record, locations));
        }
        const Confirmation consent = consentTo(*record, confirmation);
        for (qsizetype i = first; i < slices.size(); ++i) {
            slices[i].confirmed = consent.moment;
            if (!slices[i].onlyWith) // such a file stands beside a location, and is none itself
                slices[i].known = consent.locations;
        }
    }
    return slices;
}
