#pragma once

#include "slices/cleaning/CleaningNote.h"
#include "tests/slices/kit/CleaningKit.h"

#include <QFile>

/// Cleans as the program does, from the names that are given back to the end of the note, which
/// lies in this folder.
inline CleaningReport cleanNoted(const QByteArray &noteFolder, const FileAccess &access,
                                 const QList<SliceToClean> &slices, const ExcludedPaths &excluded,
                                 const SystemCalls &calls)
{
    CleaningNote note(calls, QFile::decodeName(noteFolder));
    const QList<CleaningRefusal> leftAside = note.putBack(access, {});
    const CleaningPlan plan = makeCleaningPlan(calls, access, slices, excluded);
    note.begin(plan);
    CleaningReport report = performCleaning(calls, plan, {}, {}, note.names());
    note.end();
    report.refusals += leftAside;
    report.refusalCount += std::uint64_t(leftAside.size());
    return report;
}
