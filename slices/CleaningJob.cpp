#include "slices/CleaningJob.h"

#include "slices/ExcludedPaths.h"
#include "slices/Info.h"
#include "slices/SliceCatalogue.h"

namespace {

using Records = std::vector<std::shared_ptr<Info>>;

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
    for (const auto &record : chosen)
        record->fileSizeString();
    const AccessScope scope(access);
    const CleaningPlan plan = makeCleaningPlan(calls, access, slicesToClean(chosen), excluded);
    return performCleaning(calls, plan, stop);
}

} // namespace

CleaningJob::CleaningJob(const SystemCalls &calls, FileAccess &access, QObject *parent)
    : QObject(parent), m_calls(calls), m_access(access)
{
}

CleaningJob::~CleaningJob() = default;

void CleaningJob::start(const Records &chosen, const ExcludedPaths &excluded)
{
    Q_ASSERT(!m_isRunning);
    m_isRunning = true;
    m_thread = std::jthread([this, chosen, excluded](const std::stop_token &stop) {
        const CleaningReport report = cleanDisk(m_calls, m_access, chosen, excluded, stop);
        QMetaObject::invokeMethod(
            this, [this, report] { finish(report); }, Qt::QueuedConnection);
    });
}

void CleaningJob::finish(const CleaningReport &report)
{
    m_isRunning = false;
    Q_EMIT finished(report);
}
