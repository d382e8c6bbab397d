#pragma once

#include "largefiles/search/CurrentSize.h"
#include "platform/files/FileAccess.h"
#include "platform/files/FileUrl.h"
#include "platform/threads/BackgroundQueue.h"

class SystemCalls;

/// Reads the present sizes of listed files, and whether they may be deleted, on one thread of its
/// own, however many questions there are: a disk that hangs holds up only that thread. Main thread
/// only.
class CurrentSizeReader final
{
public:
    using Answer = std::function<void(const QList<CurrentSize> &sizes)>;

    /// Both must outlive it.
    CurrentSizeReader(const SystemCalls &calls, FileAccess &access)
        : m_calls(calls), m_access(access)
    {
    }

    /// Answers on the main thread, in the order of the files; only the latest question is answered,
    /// and none once this is gone.
    void read(const FileUrls &files, Answer answer);

private:
    const SystemCalls &m_calls;
    FileAccess &m_access;
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_job;
};
