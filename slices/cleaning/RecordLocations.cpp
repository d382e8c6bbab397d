#include "slices/cleaning/RecordLocations.h"

#include "slices/record/Info.h"

#include <algorithm>

namespace {

void place(Info &record, const FileUrls &places, const FileUrls &kept)
{
    if (record.fileURLs() != places || record.kept() != kept)
        record.setPlaces(places, kept);
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
        if (!locations || programPlaces(layout, *locations).isEmpty())
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

ProgramPlaceSizes
measureProgramPlaces(const std::vector<std::shared_ptr<Info>> &records, const HomeLayout &layout,
                     const std::function<qint64(const FileUrl &, const FileUrls &kept)> &sizeOf)
{
    ProgramPlaceSizes sizes;
    for (const auto &record : records) {
        const FileUrls kept = record->kept();
        const FileUrls places = programPlaces(layout, record->fileURLs().value_or(FileUrls()));
        for (const FileUrl &place : missing(places, kept))
            sizes.push_back({record, place, sizeOf(place, kept)});
    }
    return sizes;
}

void takeAwaySizes(const ProgramPlaceSizes &sizes, const QByteArrayList &stayed)
{
    for (const auto &[record, place, bytes] : sizes) {
        if (stayed.contains(place.path()))
            record->setFileSize(std::max<qint64>(0, record->fileSize() - bytes));
    }
}
