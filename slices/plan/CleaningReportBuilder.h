#pragma once

#include "slices/plan/CleaningReport.h"

#include <atomic>
#include <mutex>
#include <new>
#include <optional>
#include <set>

/// Collects the report of one cleaning and writes its log lines: a limited number of each kind, and
/// at the end how many more there were. The threads of the cleaning share it.
class CleaningReportBuilder final
{
public:
    /// Logs at once what the plan refused.
    explicit CleaningReportBuilder(const QList<CleaningRefusal> &planned);

    /// Logs the items directly at a location, before the first is removed; of very many only the
    /// first ones.
    void logCandidates(const FileUrls &candidates, std::size_t total);
    bool logsCandidates() const { return m_isLogging && m_announced < kMaxRemovalLines; }

    /// Counts one item that is about to be removed with all that it holds. True when the item gets
    /// a line of its own, by logRemoval(): a location may hold a million items, and a log that
    /// fills the disk is no help to a program that frees it.
    bool announce()
    {
        return m_announced.fetch_add(1, std::memory_order_relaxed) < kMaxRemovalLines &&
               m_isLogging;
    }
    void logRemoval(const QByteArray &path, FileUrlKind kind) const;

    void removed() { m_removed.fetch_add(1, std::memory_order_relaxed); }
    /// One that was counted is still there.
    void takeBack() { m_removed.fetch_sub(1, std::memory_order_relaxed); }
    void failed(const QByteArray &path, int error);
    void refused(const QByteArray &path, RefusalReason reason, int error);
    /// The same for where nothing may be thrown; `path` makes the path. If there is no memory for
    /// it, the report says in one row that the memory ran out.
    template <typename MakePath>
    void tell(const MakePath &path, RefusalReason reason, int error) noexcept
    {
        try {
            refused(path(), reason, error);
        } catch (const std::bad_alloc &) {
            m_lostRows = true;
        }
    }

    /// The paths that the report names so far, the plan's included; nothing when there are more
    /// than it can name.
    std::optional<std::set<QByteArray>> namedPaths();

    /// Completes the report; call once, when the threads are done.
    CleaningReport finish(bool wasStopped);

private:
    static constexpr std::uint64_t kMaxRemovalLines = 10'000;

    void append(const CleaningRefusal &refusal);
    void logTheRest() const;

    std::uint64_t m_plannedRefusals;
    const bool m_isLogging;
    std::atomic<std::uint64_t> m_announced = 0;
    std::atomic<std::uint64_t> m_removed = 0;
    std::atomic<bool> m_lostRows = false;

    std::mutex m_mutex; ///< guards all below
    CleaningReport m_report;
};
