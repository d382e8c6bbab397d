#include "slices/RecordPlaces.h"

#include "slices/Info.h"

namespace {

void place(Info &record, const FileUrls &places)
{
    record.setFileSizeString(std::nullopt); // the next who asks makes a new one
    record.setFileURLs(places);
}

bool hasPrograms(const HomeLayout &layout, const FileUrls &locations)
{
    const auto isLocation = [&](const FileUrl &place) { return locations.contains(place); };
    return std::any_of(
        layout.programs().begin(), layout.programs().end(), [&](const ProgramFiles &program) {
            return std::any_of(program.places.begin(), program.places.end(), isLocation);
        });
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
        if (record->fileURLs() != places)
            place(*record, places);
        record->fileSizeString();
    }
}

FileUrls takeAwayPlacesInUse(const std::vector<std::shared_ptr<Info>> &records,
                             const ProgramsInUse &inUse)
{
    FileUrls takenAway;
    for (const auto &record : records) {
        const FileUrls before = record->fileURLs().value_or(FileUrls());
        const FileUrls places = inUse.without(before);
        if (places == before)
            continue;
        for (const FileUrl &url : before) {
            if (!places.contains(url))
                takenAway.append(url);
        }
        place(*record, places);
    }
    return takenAway;
}
