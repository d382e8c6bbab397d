#include "slices/RecordPlaces.h"

#include "slices/Info.h"
#include "slices/UserFolders.h"

#include <algorithm>

namespace {

void place(Info &record, const FileUrls &places, const FileUrls &kept)
{
    if (record.fileURLs() != places || record.kept() != kept)
        record.setPlaces(places, kept);
}

bool isAtOrInsideOne(const FileUrl &url, const FileUrls &places)
{
    return std::any_of(places.begin(), places.end(), [&](const FileUrl &place) {
        return isAtOrInside(url.path(), place.path());
    });
}

bool hasPrograms(const HomeLayout &layout, const FileUrls &locations)
{
    const auto isOfSlice = [&](const FileUrl &place) { return isAtOrInsideOne(place, locations); };
    return std::any_of(
        layout.programs().begin(), layout.programs().end(), [&](const ProgramFiles &program) {
            return std::any_of(program.places.begin(), program.places.end(), isOfSlice);
        });
}

/// Those that the other list has not.
FileUrls missing(const FileUrls &urls, const FileUrls &other)
{
    FileUrls rest = urls;
    rest.removeIf([&](const FileUrl &url) { return other.contains(url); });
    return rest;
}

} // namespace

void placeRecords(const std::vector<std::shared_ptr<Info>> &records, const HomeLayout &layout,
                  const ProgramsInUse &inUse)
{
    for (const auto &record : records) {
        const std::optional<SliceKind> kind = sliceKindNamed(record->name());
        const auto locations = kind ? layout.locations(*kind) : std::nullopt;
        if (!locations || !hasPrograms(layout, *locations))
            continue;
        const FileUrls places = inUse.without(*locations);
        place(*record, places, inUse.keptInside(places));
    }
}

FileUrls takeAwayPlacesInUse(const std::vector<std::shared_ptr<Info>> &records,
                             const ProgramsInUse &inUse)
{
    FileUrls takenAway;
    for (const auto &record : records) {
        const FileUrls before = record->fileURLs().value_or(FileUrls());
        const FileUrls places = inUse.without(before);
        const FileUrls keptBefore = record->kept();
        const FileUrls newlyKept = missing(inUse.keptInside(places), keptBefore);
        if (places == before && newlyKept.isEmpty())
            continue;
        takenAway += missing(before, places) + newlyKept;
        place(*record, places, keptBefore + newlyKept);
        record->fileSizeString();
    }
    return takenAway;
}

void takeAwaySizes(const std::vector<std::shared_ptr<Info>> &records, const FileUrls &stayed,
                   const std::function<qint64(const FileUrl &, const FileUrls &kept)> &sizeOf)
{
    for (const auto &record : records) {
        const FileUrls places = record->fileURLs().value_or(FileUrls());
        for (const FileUrl &url : stayed) {
            if (isAtOrInsideOne(url, places))
                record->setFileSize(
                    std::max<qint64>(0, record->fileSize() - sizeOf(url, record->kept())));
        }
    }
}
