#pragma once

#include "platform/threads/BackgroundQueue.h"
#include "slices/cleaning/Cleaning.h"
#include "slices/home/HomeLayout.h"

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class Info;
class SystemCalls;

/// Cleans the chosen slices in the background and tells when it is done. One cleaning at a time.
/// Owned by the page, used on the main thread. When it is destroyed, a running cleaning stops
/// before its next item, and the destructor waits for it. It does not wait for measures: they
/// change nothing.
class CleaningJob final : public QObject
{
    Q_OBJECT

public:
    using Records = std::vector<std::shared_ptr<Info>>;
    /// Gets what the user has excluded; nothing while that is not known.
    using UseExclusions = std::function<void(const std::optional<ExcludedPaths> &)>;
    /// Finds out what the user has excluded, and hands it over, at once or later, as long as the
    /// job lives. Called on the main thread, right before the first removal is planned.
    using Exclusions = std::function<void(const UseExclusions &)>;

    /// `calls` and `access` live as long as the program. `settingsFolder` gets a note while a
    /// cleaning moves entries aside.
    CleaningJob(const SystemCalls &calls, FileAccess &access, QString settingsFolder,
                QObject *parent = nullptr);
    ~CleaningJob() override;

    /// Cleans the chosen slices, with the locations that they have at this moment, as far as the
    /// confirmation covers them. First waits for the slices that are still being measured, so that
    /// the freed size is the size that was there.
    /// In a layout with programs, the locations of programs that were started meanwhile are left
    /// alone, and taken from the records. A program that starts during the cleaning keeps its
    /// locations that are not cleaned yet, and every program keeps the folders of the cache in
    /// which it is using something; these are subtracted from the sizes.
    void start(Records chosen, Exclusions exclusions, Confirmation confirmation,
               HomeLayout layout = {});

    /// Nothing is removed from now on. The end of the cleaning is still reported.
    void requestStop();

    bool isRunning() const { return m_isRunning; }
    /// What this cleaning, or the last one, was started with.
    const Records &chosen() const { return m_chosen; }

Q_SIGNALS:
    void finished(const CleaningReport &report);

private:
    /// The locations of each record, and what is kept inside them.
    using Locations = std::vector<std::pair<FileUrls, FileUrls>>;

    static void restore(const Records &chosen, const Locations &confirmed);
    void findExclusions();
    void remove(const std::optional<ExcludedPaths> &excluded);
    void finish(const CleaningReport &report);

    const SystemCalls &m_calls;
    FileAccess &m_access;
    QString m_settingsFolder;
    bool m_isRunning = false;
    Records m_chosen;
    Locations m_locations;
    Exclusions m_exclusions;
    Confirmation m_confirmation;
    HomeLayout m_layout;
    std::stop_source m_stop;
    BackgroundQueue<OwnersEnd::Abandon, Queueing::All> m_measures;
    BackgroundQueue<OwnersEnd::Wait, Queueing::All> m_removals; ///< last: it uses the rest
};
