#pragma once

#include "slices/ProgramsInUse.h"

#include <memory>

class Info;

/// Gives each record of a slice with programs the layout's locations without those in use, and
/// measures it unless its size stands, on the calling thread: not for the main one.
void placeRecords(const std::vector<std::shared_ptr<Info>> &records, const HomeLayout &layout,
                  const ProgramsInUse &inUse);

/// Takes the places in use away from the records; none is given back, for nobody has confirmed it.
/// Measures like the above. The places that were taken away.
FileUrls takeAwayPlacesInUse(const std::vector<std::shared_ptr<Info>> &records,
                             const ProgramsInUse &inUse);
