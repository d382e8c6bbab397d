#pragma once

#include "slices/Cleaning.h"

#include <QObject>
#include <memory>
#include <thread>
#include <vector>

class Info;

/// Cleans the chosen slices on a thread of its own and tells when it is done. One cleaning at a
/// time. Owned by the page, used on the main thread. When it is destroyed, a running cleaning stops
/// before its next item.
class CleaningJob final : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive it.
    CleaningJob(const SystemCalls &calls, FileAccess &access, QObject *parent = nullptr);
    ~CleaningJob() override;

    /// The chosen slices and what the user excluded. Slices that are still being measured are
    /// waited for first, so that what was freed is what was there.
    void start(const std::vector<std::shared_ptr<Info>> &chosen, const ExcludedPaths &excluded);

    bool isRunning() const { return m_isRunning; }

Q_SIGNALS:
    void finished(const CleaningReport &report);

private:
    void finish(const CleaningReport &report);

    const SystemCalls &m_calls;
    FileAccess &m_access;
    bool m_isRunning = false;
    std::jthread m_thread;
};
