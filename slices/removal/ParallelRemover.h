#pragma once

#include "slices/removal/SequentialRemover.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>

/// Removes trees with several threads, for disks, which wait more than they work. The threads share
/// the entries of a folder in stretches; the thread that finishes the last stretch of a folder
/// removes the folder. Only a limited number of folders is shared, and held open, at a time. Beyond
/// that limit a thread empties by itself what it finds.
class ParallelRemover final
{
public:
    /// `threads` counts the caller's, which works with the others.
    ParallelRemover(const RemovalSteps &steps, std::stop_token stop, unsigned threads);

    /// Removes what the listing names in the folder, with all that it holds. Once. Memory that runs
    /// out is reported, and ends it like a stop.
    void removeListed(const HeldFolder &folder, FolderListing listing);

private:
    struct SharedFolder;
    using FolderPointer = std::shared_ptr<SharedFolder>;
    /// Entries of a folder to be dealt with, or one of its folders to be entered.
    struct Job
    {
        enum class Kind { Deal, Enter };

        Kind kind = Kind::Deal;
        FolderPointer folder;
        std::size_t first = 0;
        std::size_t last = 0;
    };
    class Worker;

    std::vector<Job> stretchesOf(const FolderPointer &folder, std::size_t first) const;
    void help();
    template <typename Work> void guarded(SharedFolder &folder, const Work &work);
    bool isStopped() const { return m_stop.stop_requested() || m_ranOutOfMemory; }
    bool take(Job &job);
    void add(std::vector<Job> jobs);
    void finishJob();
    void release(FolderPointer folder);
    bool isRemoved(SharedFolder &folder) const;

    const RemovalSteps &m_steps;
    std::stop_token m_stop;
    unsigned m_threads;
    QByteArray m_path; ///< of the outermost folder
    std::atomic<int> m_aliveFolders = 0;
    std::atomic<bool> m_ranOutOfMemory = false;

    std::mutex m_mutex; ///< guards all below
    std::condition_variable m_changed;
    std::vector<Job> m_jobs; ///< the last is taken first, so that few folders are open at a time
    std::size_t m_unfinished = 0;
};
