#include "slices/cleaning/RecordLocations.h"

#include "slices/probe/FolderIdentity.h"
#include "slices/record/Info.h"

#include <algorithm>

namespace {

void setLocations(Info &record, const FileUrls &locations, const FileUrls &kept)
{
    if (record.fileURLs() != locations || record.kept() != kept)
        record.setLocations(locations, kept);
}

/// Those that the other list has not.
FileUrls missing(const FileUrls &urls, const FileUrls &other)
{
    FileUrls rest = urls;
    rest.removeIf([&](const FileUrl &url) { return other.contains(url); });
    return rest;
}

bool isInOne(const FileUrl &url, const FileUrls &locations)
{
    return std::ranges::any_of(locations, [&](const FileUrl &location) {
        return isAtOrInside(url.path(), location.path());
    });
}

/// No size counts what is hidden in a location.
bool isHidden(const FileUrl &url)
{
    return url.lastPathComponent().startsWith('.');
}

} // namespace

void setRecordLocations(const std::vector<std::shared_ptr<Info>> &records, const HomeLayout &layout,
                        const ProgramsInUse &inUse)
{
    for (const auto &record : records) {
        const std::optional<SliceKind> kind = sliceKindNamed(record->name());
        const auto locations = kind ? layout.locations(*kind) : std::nullopt;
        if (!locations || programLocations(layout, *locations).isEmpty())
            continue;
        const FileUrls rest = inUse.without(*locations);
        setLocations(*record, rest, inUse.keptInside(rest));
    }
}

FileUrls takeAwayLocationsInUse(const std::vector<std::shared_ptr<Info>> &records,
                                const ProgramsInUse &inUse)
{
    FileUrls takenAway;
    for (const auto &record : records) {
        const FileUrls before = record->fileURLs().value_or(FileUrls());
        const FileUrls rest = inUse.without(before);
        const FileUrls keptBefore = record->kept();
        const FileUrls newlyKept = missing(inUse.keptInside(rest), keptBefore);
        if (rest == before && newlyKept.isEmpty())
            continue;
        takenAway += missing(before, rest) + newlyKept;
        setLocations(*record, rest, keptBefore + newlyKept);
        record->fileSizeString();
    }
    return takenAway;
}

ProgramLocationSizes measureProgramLocations(const std::vector<std::shared_ptr<Info>> &records,
                                             const HomeLayout &layout,
                                             const MeasureLocation &sizeOf)
{
    ProgramLocationSizes sizes;
    for (const auto &record : records) {
        const FileUrls kept = record->kept();
        const FileUrls locations =
            programLocations(layout, record->fileURLs().value_or(FileUrls()));
        for (const FileUrl &location : missing(locations, kept))
            sizes.push_back({record, location, sizeOf(location, kept)});
    }
    return sizes;
}

void addSizes(ProgramLocationSizes &sizes, const std::vector<std::shared_ptr<Info>> &records,
              const FileUrls &found, const MeasureLocation &sizeOf)
{
    for (const FileUrl &url : found) {
        if (std::ranges::find(sizes, url, &ProgramLocationSize::location) != sizes.end())
            continue;
        for (const auto &record : records) {
            const FileUrls locations = record->fileURLs().value_or(FileUrls());
            const FileUrls kept = record->kept();
            const bool isCounted =
                locations.contains(url) || (isInOne(url, locations) && !isHidden(url));
            if (isCounted && !isInOne(url, kept))
                sizes.push_back({record, url, sizeOf(url, kept)});
        }
    }
}

void takeAwaySizes(const ProgramLocationSizes &sizes, const QByteArrayList &stayed)
{
    for (const auto &[record, location, bytes] : sizes) {
        if (stayed.contains(location.path()))
            record->setFileSize(std::max<qint64>(0, record->fileSize() - bytes));
    }
}
