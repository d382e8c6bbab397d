#pragma once

#include "largefiles/search/LargeFileSearch.h"
#include "platform/threads/BackgroundQueue.h"
#include "platform/threads/ReplyChannel.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <memory>

class LargeFileList;
class SystemCalls;
struct SearchEnd;

/// The result of a search.
struct SearchReport
{
    qint64 items = 0;                  ///< files and folders looked at
    bool isComplete = false;           ///< false when something could not be read
    QList<UnreadablePlace> unreadable; ///< in the order of discovery
};

/// Searches for large files on a thread of its own and lists them as they are found. At the end it
/// removes from the list what has vanished meanwhile. Picks and rows of earlier searches stay.
///
/// One search counts at a time. A newer search, stop(), and emptying the list end it; after that
/// nothing of it reaches the list or the signals. What was listed until then stays listed. Rows are
/// inserted a few milliseconds at a time, so that the window keeps moving however many come. Owned
/// by the sheet, main thread only.
class SearchJob final : public QObject
{
    Q_OBJECT

public:
    /// `calls` and `access` live as long as the program: a search that waits for a disk may outlive
    /// the job. The list outlives the job.
    SearchJob(const SystemCalls &calls, FileAccess &access, LargeFileList &list,
              QObject *parent = nullptr);
    /// Tells the search to stop, and does not wait for it.
    ~SearchJob() override;

    /// Begins a search of these folders (see searchURLs()); `excludedPaths` are the texts stored
    /// under VNTExcludedPathsString. Returns at once.
    void beginSearch(const FileUrls &folders, const QStringList &excludedPaths);
    /// Returns at once; the file work ends at its next entry.
    void stop();

    bool isRunning() const { return m_run != nullptr; }
    /// Whether any file work is still under way, that of stopped searches included.
    bool isAtWork() const { return m_searches.isBusy(); }

Q_SIGNALS:
    void searching(const FileUrl &folder);
    void unreadable(const UnreadablePlace &place);
    /// The search ran to its end.
    void finished(const SearchReport &report);
    /// It was ended before; not when a newer one took its place.
    void stopped();

private:
    class Run;

    void deliver(const std::shared_ptr<Run> &run);
    void take(const FileUrl &folder);
    void take(const File &file);
    void take(const UnreadablePlace &place);
    void take(const SearchEnd &end);

    const SystemCalls &m_calls;
    FileAccess &m_access;
    LargeFileList &m_list;
    std::shared_ptr<Run> m_run; ///< the search that counts
    QList<UnreadablePlace> m_unreadable;
    ReplyChannel m_channel;
    /// A search that is slow to obey its stop does not delay a newer one.
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_searches{
        kThreadForEachTask, ThreadPriority::BehindTheWindow};
};
