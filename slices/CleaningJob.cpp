#include "slices/CleaningJob.h"

#include "slices/CleaningLedger.h"
#include "slices/ExcludedPaths.h"
#include "slices/Info.h"
#include "slices/SliceCatalogue.h"

namespace {

using Records = CleaningJob::Records;

/// Whether the record's places are the very files to remove.
bool infoIsFilesNotFolders(const Info &info)
{
    const std::optional<SliceKind> kind = sliceKindNamed(info.name());
    return kind && sliceCatalogue()[indexOf(*kind)].content == SliceContent::Files;
}

QList<SliceToClean> slicesToClean(const Records &chosen)
{
    QList<SliceToClean> slices;
    for (const auto &record : chosen) {
        slices.append({record->name(), record->fileURLs().value_or(FileUrls()),
                       infoIsFilesNotFolders(*record) ? CleaningMode::TheVeryFiles
                                                      : CleaningMode::ContentsOfFolders});
    }
    return slices;
}

CleaningReport cleanDisk(const SystemCalls &calls, FileAccess &access, const Records &chosen,
                         const ExcludedPaths &excluded, const std::stop_token &stop)
{
    const AccessScope scope(access);
    const CleaningPlan plan = makeCleaningPlan(calls, access, slicesToClean(chosen), excluded);
    return performCleaning(calls, plan, stop);
}

CleaningReport refusedReport()
{
    return CleaningLedger({{QByteArray(), RefusalReason::UnknownExclusions, 0}}, nullptr)
        .finish(false);
}

} // namespace

CleaningJob::CleaningJob(const SystemCalls &calls, FileAccess &access, QObject *parent)
    : QObject(parent), m_calls(calls), m_access(access)
{
}

CleaningJob::~CleaningJob()
{
    requestStop();
}

void CleaningJob::requestStop()
{
    m_stop.request_stop();
}

void CleaningJob::start(Records chosen, Exclusions exclusions)
{
    Q_ASSERT(!m_isRunning);
    m_isRunning = true;
    m_stop = std::stop_source();
    m_chosen = std::move(chosen);
    m_exclusions = std::move(exclusions);
    runInBackground([this, records = m_chosen](const std::stop_token &) {
        for (const auto &record : records)
            record->fileSizeString();
        return [this] { remove(); };
    });
}

// Back on the main thread between measuring and removing: measuring may have taken minutes, and
// what was excluded meanwhile must be kept.
void CleaningJob::remove()
{
    const std::optional<ExcludedPaths> excluded = m_exclusions();
    if (!excluded) {
        finish(refusedReport());
        return;
    }
    runInBackground([this, records = m_chosen, excluded = *excluded](const std::stop_token &stop) {
        CleaningReport report;
        report.wasStopped = true;
        if (!stop.stop_requested())
            report = cleanDisk(m_calls, m_access, records, excluded, stop);
        return [this, report] { finish(report); };
    });
}

void CleaningJob::finish(const CleaningReport &report)
{
    m_isRunning = false;
    Q_EMIT finished(report);
}

/// Does the work on a thread, and what it answers on the main thread.
void CleaningJob::runInBackground(
    std::function<std::function<void()>(const std::stop_token &)> work)
{
    m_thread = std::jthread([this, work = std::move(work), stop = m_stop.get_token()] {
        QMetaObject::invokeMethod(this, work(stop), Qt::QueuedConnection);
    });
}
