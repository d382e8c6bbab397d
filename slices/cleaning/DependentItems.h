#pragma once

#include "slices/plan/CleaningPlan.h"
#include "slices/removal/RemovalSteps.h"

/// What a cleaning leaves because something else that stays would be lost without it: a trash info
/// file, without which its item could not be put back, and a journal, with which the content of its
/// database would be lost. The cleaning comes to the other item first, and looks for it once more
/// right before the file goes. In doubt the other item is there.

/// Which items the files directly in a location, or the location's own file, belong to.
ItemOfFile itemOfFilesIn(const CleaningLocation &location);

/// "../files/X" for the trash info file "X.trashinfo"; nothing for other names.
QByteArray itemOfTrashInfo(const QByteArray &name);
