#include "slices/plan/CleaningReportBuilder.h"

#include "platform/base/Log.h"
#include "slices/plan/RefusalText.h"

#include <cerrno>
#include <system_error>

namespace {

constexpr qsizetype kRoom = 16;

/// What people and tests read: the URL, which is plain ASCII whatever the name.
QByteArray textOf(const QByteArray &path, FileUrlKind kind)
{
    return FileUrl::fromPath(path, kind).absoluteString();
}

std::string errorText(int error)
{
    return std::generic_category().message(error);
}

void logLocked(const CleaningFailure &failure)
{
    qCInfo(logVantor, "File might be locked: %s: %s",
           textOf(failure.path, FileUrlKind::File).constData(), errorText(failure.error).c_str());
}

/// The text of an exclusion that cannot be read is no path, and may be anything.
QByteArray whatIsRefused(const CleaningRefusal &refusal)
{
    if (refusal.path.isEmpty())
        return "everything";
    return refusal.path.startsWith('/') ? textOf(refusal.path, FileUrlKind::File)
                                        : refusal.path.toPercentEncoding(":/%");
}

void logLocked(const CleaningRefusal &refusal)
{
    const std::string error =
        refusal.error == 0 ? std::string() : " (" + errorText(refusal.error) + ')';
    qCInfo(logVantor, "File might be locked: %s: %s%s", whatIsRefused(refusal).constData(),
           refusalText(refusal.reason).logged, error.c_str());
}

/// A line that there is no memory for is left out: the report counts, not the log.
template <typename Log> void ifPossible(const Log &log)
{
    try {
        log();
    } catch (const std::bad_alloc &) {
        return;
    }
}

} // namespace

CleaningReportBuilder::CleaningReportBuilder(const QList<CleaningRefusal> &planned)
    : m_plannedRefusals(static_cast<std::uint64_t>(planned.size())),
      m_isLogging(logVantor().isInfoEnabled())
{
    m_report.refusals.reserve(planned.size() + kRoom);
    m_report.refusals.append(planned);
    m_report.refusalCount = m_plannedRefusals;
    for (const CleaningRefusal &refusal : planned)
        logLocked(refusal);
}

void CleaningReportBuilder::logCandidates(const FileUrls &candidates, std::size_t total)
{
    QByteArrayList texts;
    for (const FileUrl &candidate : candidates)
        texts.append('"' + candidate.absoluteString() + '"');
    const std::size_t left = total - static_cast<std::size_t>(candidates.size());
    if (left > 0)
        texts.append("and " + QByteArray::number(static_cast<qulonglong>(left)) + " more");
    qCInfo(logVantor, "(%s)", texts.join(", ").constData());
}

void CleaningReportBuilder::logRemoval(const QByteArray &path, FileUrlKind kind) const
{
    qCInfo(logVantor, "%s", textOf(path, kind).constData());
}

void CleaningReportBuilder::failed(const QByteArray &path, int error)
{
    const std::scoped_lock lock(m_mutex);
    if (m_report.failureCount < CleaningReport::kMaxReported) {
        m_report.failures.append({path, error});
        ifPossible([&] { logLocked(m_report.failures.constLast()); });
    }
    ++m_report.failureCount;
}

void CleaningReportBuilder::refused(const QByteArray &path, RefusalReason reason, int error)
{
    const std::scoped_lock lock(m_mutex);
    if (m_report.refusalCount < m_plannedRefusals + CleaningReport::kMaxReported)
        append({path, reason, error});
    ++m_report.refusalCount;
}

/// Leaves room for one more, so that finish() needs no memory for its row.
void CleaningReportBuilder::append(const CleaningRefusal &refusal)
{
    QList<CleaningRefusal> &rows = m_report.refusals;
    if (rows.capacity() < rows.size() + 2)
        rows.reserve(2 * rows.size() + kRoom);
    rows.append(refusal);
    ifPossible([&] { logLocked(refusal); });
}

std::optional<std::set<QByteArray>> CleaningReportBuilder::namedPaths()
{
    const std::scoped_lock lock(m_mutex);
    const auto listed = std::uint64_t(m_report.failures.size() + m_report.refusals.size());
    if (listed < m_report.failureCount + m_report.refusalCount)
        return std::nullopt;
    std::set<QByteArray> paths;
    for (const CleaningFailure &failure : m_report.failures)
        paths.insert(failure.path);
    for (const CleaningRefusal &refusal : m_report.refusals)
        paths.insert(refusal.path);
    return paths;
}

CleaningReport CleaningReportBuilder::finish(bool wasStopped)
{
    const std::scoped_lock lock(m_mutex);
    m_report.removedItems = m_removed.load(std::memory_order_relaxed);
    m_report.wasStopped = wasStopped;
    if (m_lostRows) {
        ++m_report.refusalCount;
        m_report.refusals.append({QByteArray(), RefusalReason::OutOfMemory, ENOMEM});
        ifPossible([&] { logLocked(m_report.refusals.constLast()); });
    }
    ifPossible([&] { logTheRest(); });
    return m_report;
}

void CleaningReportBuilder::logTheRest() const
{
    const std::uint64_t announced = m_announced.load(std::memory_order_relaxed);
    if (announced > kMaxRemovalLines)
        qCInfo(logVantor, "and %llu more removals", qulonglong(announced - kMaxRemovalLines));
    const std::uint64_t left = m_report.failureCount + m_report.refusalCount;
    const auto listed = std::uint64_t(m_report.failures.size() + m_report.refusals.size());
    if (left > listed)
        qCInfo(logVantor, "File might be locked: %llu more", qulonglong(left - listed));
}
