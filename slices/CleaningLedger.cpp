#include "slices/CleaningLedger.h"

#include "platform/Log.h"

#include <system_error>

namespace {

constexpr std::uint64_t kItemsBetweenCalls = 512;
constexpr int kMaxRemovalLines = 10'000;

/// What people and tests read: the URL, which is plain ASCII whatever the name.
QByteArray textOf(const QByteArray &path, FileUrlKind kind)
{
    return FileUrl::fromPath(path, kind).absoluteString();
}

void logLocked(const QByteArray &path, int error)
{
    qCInfo(logVantor, "File might be locked: %s: %s", textOf(path, FileUrlKind::File).constData(),
           std::generic_category().message(error).c_str());
}

} // namespace

CleaningLedger::CleaningLedger(const QList<CleaningRefusal> &planned, CleaningObserver *observer)
    : m_observer(observer),
      m_plannedRefusals(static_cast<std::uint64_t>(planned.size())),
      m_logsRemovals(logVantor().isInfoEnabled())
{
    m_report.refusals = planned;
    m_report.refusalCount = m_plannedRefusals;
}

void CleaningLedger::logCandidates(const FileUrls &candidates, std::size_t total)
{
    QByteArrayList texts;
    for (const FileUrl &candidate : candidates)
        texts.append('"' + candidate.absoluteString() + '"');
    const std::size_t left = total - static_cast<std::size_t>(candidates.size());
    if (left > 0)
        texts.append("and " + QByteArray::number(static_cast<qulonglong>(left)) + " more");
    qCInfo(logVantor, "(%s)", texts.join(", ").constData());
}

void CleaningLedger::logRemoval(const QByteArray &path, FileUrlKind kind)
{
    const std::scoped_lock lock(m_mutex);
    if (++m_removalLines > kMaxRemovalLines) {
        if (m_logsRemovals.exchange(false))
            qCInfo(logVantor, "Further removals are not logged one by one");
        return;
    }
    qCInfo(logVantor, "%s", textOf(path, kind).constData());
}

void CleaningLedger::removed()
{
    const std::uint64_t items = m_removed.fetch_add(1, std::memory_order_relaxed) + 1;
    if (items % kItemsBetweenCalls == 0)
        tellObserver();
}

void CleaningLedger::tellObserver()
{
    if (!m_observer)
        return;
    const std::scoped_lock lock(m_observerMutex);
    m_observer->removedSoFar(m_removed.load(std::memory_order_relaxed));
}

void CleaningLedger::failed(const QByteArray &path, int error)
{
    const std::scoped_lock lock(m_mutex);
    if (++m_report.failureCount > CleaningReport::kMaxReported)
        return;
    m_report.failures.append({path, error});
    logLocked(path, error);
}

void CleaningLedger::refused(const QByteArray &path, RefusalReason reason, int error)
{
    const std::scoped_lock lock(m_mutex);
    if (++m_report.refusalCount > m_plannedRefusals + CleaningReport::kMaxReported)
        return;
    m_report.refusals.append({path, reason, error});
    logLocked(path, error);
}

CleaningReport CleaningLedger::finish(bool wasStopped)
{
    tellObserver();
    const std::scoped_lock lock(m_mutex);
    m_report.removedItems = m_removed.load(std::memory_order_relaxed);
    m_report.wasStopped = wasStopped;
    return m_report;
}
