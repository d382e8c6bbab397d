#pragma once

#include "slices/home/ProgramsInUse.h"

#include <functional>
#include <memory>

class Info;

/// Gives each record of a slice with programs the layout's locations, without those in use. A
/// location that is new to a record is not measured yet. Any thread.
void setRecordLocations(const std::vector<std::shared_ptr<Info>> &records, const HomeLayout &layout,
                        const ProgramsInUse &inUse);

/// Takes the locations in use, and those inside locations, away from the records. Gives none back,
/// because the user has not confirmed it. Measures the records that change, on the calling thread:
/// not for the main thread. Returns what was taken away.
FileUrls takeAwayLocationsInUse(const std::vector<std::shared_ptr<Info>> &records,
                                const ProgramsInUse &inUse);

/// How much of a record's size lies at a location that a program is using, or may begin to use.
struct ProgramLocationSize
{
    std::shared_ptr<Info> record;
    FileUrl location;
    qint64 bytes = 0;
};
using ProgramLocationSizes = std::vector<ProgramLocationSize>;
using MeasureLocation = std::function<qint64(const FileUrl &, const FileUrls &kept)>;

/// Measures those locations of the records before a cleaning: once a program uses one, it writes
/// there. Calls `sizeOf` on the calling thread, with what the record keeps anyway.
ProgramLocationSizes measureProgramLocations(const std::vector<std::shared_ptr<Info>> &records,
                                             const HomeLayout &layout,
                                             const MeasureLocation &sizeOf);

/// Measures further places in the same way, once they were found in use: locations of the records
/// and entries directly in one, but for those that are kept, hidden or already among the sizes.
void addSizes(ProgramLocationSizes &sizes, const std::vector<std::shared_ptr<Info>> &records,
              const FileUrls &found, const MeasureLocation &sizeOf);

/// Subtracts the locations at these paths, none in another, from the sizes of their records: they
/// were measured, but then stayed.
void takeAwaySizes(const ProgramLocationSizes &sizes, const QByteArrayList &stayed);
