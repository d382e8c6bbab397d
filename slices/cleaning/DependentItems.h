#pragma once

#include "platform/files/FileAccess.h"
#include "platform/files/FolderListing.h"
#include "platform/system/SystemResult.h"

#include <functional>

class SystemCalls;

/// What a cleaning leaves because something else that stays would be lost without it. The cleaning
/// comes to the other item first. If that still exists, it was kept or refused, or could not be
/// removed, and the report says so. In doubt it exists, and the report has to name what stays.

/// Whether a file of this name in an open folder is the journal of a database that is still there:
/// the content of a database is lost with its journal. An errno when that cannot be told.
SystemResult<bool> journalStillNeeded(const SystemCalls &calls, int folder, const QByteArray &name);

/// Is told of what stays in doubt, with the errno.
using ReportDoubt = std::function<void(const QByteArray &name, int error)>;

/// Takes out of the listing of a trash's folder "info" each trash info file whose item is still in
/// the folder "files" beside it: without that file the item could not be put back.
void passOverTrashInfoInNeed(const SystemCalls &calls, const AnchoredPath &info,
                             FolderListing &listing, const ReportDoubt &report);
