#include "slices/page/CleaningJob.h"

#include "platform/base/Log.h"
#include "platform/system/SystemCalls.h"
#include "platform/system/ThreadConfinement.h"
#include "slices/cleaning/CleaningNote.h"
#include "slices/cleaning/RecordLocations.h"
#include "slices/cleaning/SlicesToClean.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "slices/home/CacheInUse.h"
#include "slices/plan/CleaningReportBuilder.h"
#include "slices/record/Info.h"
#include "slices/sizing/FolderSizing.h"

#include <cerrno>
#include <mutex>
#include <new>

namespace {

using Records = CleaningJob::Records;

/// What was found in use during the cleaning, unknown to the plan.
QByteArrayList foundInUse(const CleaningReport &report, const CleaningPlan &plan)
{
    QByteArrayList found;
    for (const CleaningRefusal &refusal : report.refusals.sliced(plan.refusals().size())) {
        if (refusal.reason == RefusalReason::InUse)
            found.append(refusal.path);
    }
    return found;
}

void logConfinementOnce(const SystemCalls &calls)
{
    static std::once_flag logged;
    std::call_once(logged, [&] {
        qCInfo(logVantor, "%s",
               calls.confinement().isAvailable()
                   ? "the kernel confines the threads that remove"
                   : "the kernel cannot confine threads: the way up is looked at instead");
    });
}

/// What a cleaning works with and on.
struct Work
{
    const SystemCalls &calls;
    FileAccess &access;
    QString settingsFolder;
    Records chosen;
    HomeLayout layout;
    ExcludedPaths excluded;
    Confirmation confirmation;
};

CleaningReport cleanDisk(const Work &work, const std::stop_token &stop)
{
    const SystemCalls &calls = work.calls;
    const FileAccess &access = work.access;
    const Records &chosen = work.chosen;
    const HomeLayout &layout = work.layout;
    const AccessScope scope(work.access);
    CleaningNote note(calls, work.settingsFolder);
    const QList<CleaningRefusal> leftAside = note.putBack(access, stop);
    const FileUrls inUse =
        takeAwayLocationsInUse(chosen, ProgramsInUse::find(calls, access, layout));
    const auto sizeOf = [&](const FileUrl &url, const FileUrls &kept) {
        const auto location = access.anchoredPath(url);
        const SizingRules rules{.kept = pathsInside(url, kept)};
        return location ? measureFolder(calls, *location, stop, 0, rules).bytes : 0;
    };
    ProgramLocationSizes sizes = measureProgramLocations(chosen, layout, sizeOf);
    const CleaningPlan plan = makeCleaningPlan(
        calls, access, slicesToClean(layout, chosen, work.confirmation), work.excluded, inUse);
    CacheInUse caches(calls, layout);
    logConfinementOnce(calls);
    const auto inUseNow = [&](const CleaningLocation &location, const FileUrl &entry) {
        // The outer folders come first: what is inside one is not told of and subtracted again.
        FileUrls found;
        if (entry == location.url)
            found = caches.entriesInUse(location.path, entry);
        found += locationsInUse(calls, location.path, layout, entry);
        addSizes(sizes, chosen, found, sizeOf);
        return found;
    };
    note.begin(plan);
    CleaningReport report = performCleaning(calls, plan, stop, inUseNow, note.names());
    note.end();
    takeAwaySizes(sizes, foundInUse(report, plan));
    report.refusals += leftAside;
    report.refusalCount += std::uint64_t(leftAside.size());
    return report;
}

CleaningReport refusedReport(RefusalReason reason, int error = 0)
{
    return CleaningReportBuilder({{QByteArray(), reason, error}}).finish(false);
}

} // namespace

CleaningJob::CleaningJob(const SystemCalls &calls, FileAccess &access, QString settingsFolder,
                         QObject *parent)
    : QObject(parent), m_calls(calls), m_access(access), m_settingsFolder(std::move(settingsFolder))
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

void CleaningJob::start(Records chosen, Exclusions exclusions, Confirmation confirmation,
                        HomeLayout layout)
{
    Q_ASSERT(!m_isRunning);
    m_isRunning = true;
    m_stop = std::stop_source();
    m_chosen = std::move(chosen);
    m_locations.clear();
    for (const auto &record : m_chosen)
        m_locations.emplace_back(record->fileURLs().value_or(FileUrls()), record->kept());
    m_exclusions = std::move(exclusions);
    m_confirmation = std::move(confirmation);
    m_layout = std::move(layout);
    m_measures.run(
        [this, records = m_chosen, stop = m_stop.get_token()](const std::stop_token &end) mutable {
            for (const auto &record : records) {
                if (!stop.stop_requested() && !end.stop_requested())
                    record->fileSizeString();
            }
            // Carries the records back: the last reference to one must not end on this thread.
            return [this, records = std::move(records)] { findExclusions(); };
        });
}

// Back on the main thread between measuring and removing: measuring may have taken minutes, and
// what was excluded meanwhile must be kept.
void CleaningJob::findExclusions()
{
    m_exclusions([this](const std::optional<ExcludedPaths> &excluded) { remove(excluded); });
}

void CleaningJob::remove(const std::optional<ExcludedPaths> &excluded)
{
    if (!excluded) {
        finish(refusedReport(RefusalReason::UnknownExclusions));
        return;
    }
    const Work work{m_calls,  m_access,  m_settingsFolder, m_chosen,
                    m_layout, *excluded, m_confirmation};
    m_removals.run(
        [this, work, locations = m_locations, source = m_stop](const std::stop_token &end) mutable {
            const std::stop_callback endWithTheProgram(end, [&source] { source.request_stop(); });
            const std::stop_token stop = source.get_token();
            CleaningReport report;
            report.wasStopped = true;
            try {
                restore(work.chosen, locations);
                if (!stop.stop_requested())
                    report = cleanDisk(work, stop);
            } catch (const std::bad_alloc &) {
                report = refusedReport(RefusalReason::OutOfMemory, ENOMEM);
            }
            return [this, report] { finish(report); };
        });
}

/// Gives the records back the locations that were confirmed: changes since the start of the
/// cleaning do not count.
void CleaningJob::restore(const Records &chosen, const Locations &confirmed)
{
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        const auto &[locations, kept] = confirmed[i];
        if (chosen[i]->fileURLs().value_or(FileUrls()) == locations && chosen[i]->kept() == kept)
            continue;
        chosen[i]->setLocations(locations, kept);
        chosen[i]->fileSizeString();
    }
}

void CleaningJob::finish(const CleaningReport &report)
{
    m_isRunning = false;
    Q_EMIT finished(report);
}
