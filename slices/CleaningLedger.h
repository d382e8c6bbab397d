#pragma once

#include "slices/Cleaning.h"

#include <atomic>
#include <mutex>

/// Keeps the books of one cleaning and writes its log lines. Its threads share it.
class CleaningLedger final
{
public:
    CleaningLedger(const QList<CleaningRefusal> &planned, CleaningObserver *observer);

    /// The items directly in question at a place, before the first is removed; of very many only
    /// the first.
    void logCandidates(const FileUrls &candidates, std::size_t total);
    /// One of them, about to be removed with all that it holds.
    void logRemoval(const QByteArray &path, FileUrlKind kind);
    /// Whether the next such line would be written: a place may hold a million items, and a log
    /// that fills the disk is no help to a program that frees it.
    bool logsRemovals() const { return m_logsRemovals.load(std::memory_order_relaxed); }

    void removed();
    void failed(const QByteArray &path, int error);
    void refused(const QByteArray &path, RefusalReason reason, int error);

    /// Closes the books; call when the threads are done.
    CleaningReport finish(bool wasStopped);

private:
    void tellObserver();

    CleaningObserver *m_observer;
    std::uint64_t m_plannedRefusals;
    std::atomic<std::uint64_t> m_removed = 0;
    std::atomic<bool> m_logsRemovals;
    std::mutex m_observerMutex;

    std::mutex m_mutex; ///< guards all below
    CleaningReport m_report;
    int m_removalLines = 0;
};
