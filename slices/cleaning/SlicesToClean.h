#pragma once

#include "slices/home/HomeLayout.h"
#include "slices/plan/CleaningPlan.h"

#include <memory>

class Info;

/// What a cleaning is asked to do for the chosen slices of a home, in their order: each with the
/// locations that its record has now and what is kept inside them. What has changed since the user
/// confirmed stays, and also a file that has changed since it was picked, and a location that is
/// not the one that the user was asked about. In a freedesktop home the
/// trash's own folders are emptied even if they are read-only. The file "directorysizes" beside
/// them goes first, unless the folder whose sizes it lists is left alone: it is a mere aid that
/// file managers write anew, and must never name what is gone.
QList<SliceToClean> slicesToClean(const HomeLayout &layout,
                                  const std::vector<std::shared_ptr<Info>> &chosen,
                                  const Confirmation &confirmation);
