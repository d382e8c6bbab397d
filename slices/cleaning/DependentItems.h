#pragma once

#include "platform/files/FileAccess.h"
#include "platform/files/FolderListing.h"

class SystemCalls;

/// What a cleaning leaves because something else that stays would be lost without it. The other was
/// dealt with before: where it is still there it was kept, refused or could not be removed, and
/// that has been told. In doubt it is there.

/// Whether a file of this name in an open folder is the journal of a database that is still there:
/// what a database stands for is lost with its journal.
bool journalStillNeeded(const SystemCalls &calls, int folder, const QByteArray &name);

/// Forgets, of a trash's folder "info", the records of what is still in the folder "files" beside
/// it: nobody could put that back without its record.
void passOverTrashInfoInNeed(const SystemCalls &calls, const AnchoredPath &info,
                             FolderListing &listing);
