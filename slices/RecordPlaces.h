#pragma once

#include "slices/ProgramsInUse.h"

#include <functional>
#include <memory>

class Info;

/// Gives each record of a slice with programs the layout's locations without those in use. What is
/// new to a record is not measured yet. Any thread.
void placeRecords(const std::vector<std::shared_ptr<Info>> &records, const HomeLayout &layout,
                  const ProgramsInUse &inUse);

/// Takes the places in use, and those inside places, away from the records; none is given back, for
/// nobody has confirmed it. Measures what that changes, on the calling thread: not for the main
/// one. What was taken away.
FileUrls takeAwayPlacesInUse(const std::vector<std::shared_ptr<Info>> &records,
                             const ProgramsInUse &inUse);

/// Takes what these places hold, none in another, off the sizes of the records to whose places they
/// belong: they were measured, but then stayed. `sizeOf` is asked on the calling thread, with what
/// the record keeps anyway.
void takeAwaySizes(const std::vector<std::shared_ptr<Info>> &records, const FileUrls &stayed,
                   const std::function<qint64(const FileUrl &, const FileUrls &kept)> &sizeOf);
