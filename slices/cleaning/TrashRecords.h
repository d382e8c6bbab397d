#pragma once

#include "platform/files/FolderListing.h"
#include "slices/plan/CleaningPlan.h"

#include <map>
#include <set>

class CleaningReportBuilder;
class KnownReasons;
class LaterChanges;
class SystemCalls;

/// Says which trash info files ("records") of a trash stay. A record without its item could not be
/// put back, so it stays for as long as the item does. And whoever moves X to the trash writes the
/// record first: for a moment it looks like one that has lost its item. So a record stays too that
/// has no item when the cleaning begins, and came only a moment before the user confirmed.
///
/// To be made before the first removal; used on the thread that cleans.
class TrashRecords final
{
public:
    /// Looks at each folder "info" of the plan.
    TrashRecords(const SystemCalls &calls, const CleaningPlan &plan);

    /// Takes the records that stay out of the listing of a folder "info", and reports those for
    /// which there is no reason yet.
    void passOver(const CleaningLocation &info, const KnownReasons &reasons,
                  CleaningReportBuilder &builder, FolderListing &listing) const;

private:
    using Names = std::set<QByteArray>;

    SystemResult<Names> findYoung(const CleaningLocation &info) const;
    SystemResult<FileDescriptor> openFiles(const CleaningLocation &info) const;
    SystemResult<FileStatus> itemIn(const FileDescriptor &files, const QByteArray &name) const;
    bool isYoung(int folder, const char *record, const LaterChanges &later) const;

    const SystemCalls &m_calls;
    /// The young records without an item, for each folder by its path; an errno where nobody knows
    /// them.
    std::map<QByteArray, SystemResult<Names>> m_young;
};
