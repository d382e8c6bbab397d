#pragma once

#include "platform/threads/BackgroundQueue.h"
#include "slices/page/CleaningText.h"
#include "slices/page/SliceSelection.h"
#include "slices/record/Confirmation.h"
#include "slices/record/Info.h"

#include <QHash>
#include <functional>
#include <stop_token>

/// Looks at the home folder, keeps what it found there (where everything is, and which programs
/// run) and gives the records of the selection their locations and the means to measure them.
///
/// Long surveys run beside the main thread. Their answers come from the event loop, and only until
/// stop() or until a newer request. When this is destroyed, all measures stop. Owned by the page;
/// main thread only.
class HomeWatch final : public QObject
{
    Q_OBJECT

public:
    /// What it works with; all must outlive it.
    struct Services
    {
        const SystemCalls &calls;
        FileAccess &access;
        std::function<FileUrl()> homeFolder;
        /// Whether the records may change. During a cleaning, what the user has confirmed stays as
        /// it is.
        std::function<bool()> mayChange;
    };

    HomeWatch(Services services, SliceSelection &selection, QObject *parent = nullptr);
    ~HomeWatch() override;

    /// Where everything is; of an unknown kind until found(), and while the home does not answer.
    const HomeLayout &layout() const { return m_findings.layout; }
    bool isKnown() const { return layout().kind() != HomeKind::Unknown; }
    /// The programs that keep something of this slice because they are in use.
    QStringList programsInUse(SliceKind kind) const;
    ProgramsSeen programsSeen() const { return m_findings.inUse.seen(); }
    /// What of this slice is kept although no program uses it, with the sizes read so far.
    QList<KeptContent> keptContents(SliceKind kind) const;

    /// Makes new records, nothing measured yet. They have their locations at once in a home that
    /// plainly has a Library, and once found() comes in any other.
    void look();
    /// Open requests get no answer any more. Measures go on.
    void stop() { m_looking.stop(); }

    /// Looks for the programs that run now, gives the result to the records, and goes on.
    void lookForPrograms(std::function<void()> then);
    /// The same as work for a thread of the caller's.
    BackgroundTask<OwnersEnd::Abandon> programLook(std::function<void()> then);

    /// Goes on when each of these records has a size.
    void measure(SliceSelection::Records records, std::function<void()> then);
    /// Looks at what stands at these locations, and goes on with it.
    void identify(FileUrls locations, std::function<void(const LocationIdentities &)> then);
    /// Stops measuring the records. Only look() starts new measures.
    void stopMeasuring();

Q_SIGNALS:
    /// The home was looked at: the records are new ones, with locations if it has answered.
    void found();
    /// Programs were started or have ended: some records have other locations.
    void programsChanged();
    /// A record was measured.
    void sizeChanged();

private:
    struct Findings
    {
        HomeLayout layout;
        ProgramsInUse inUse;
    };

    bool hasPlainLibrary(const FileUrl &home) const;
    void place(const Findings &findings);
    Info::Measure measureFunction() const;
    void takeFindings(const Findings &findings);
    void takePrograms(const ProgramsInUse &inUse);
    void measureKept();

    Services m_services;
    SliceSelection &m_selection;
    std::shared_ptr<FileSizeChangedNotification> m_sizeChanged;
    Findings m_findings;
    std::stop_source m_measuring;          ///< stops the measures of the present records
    QHash<QByteArray, qint64> m_keptSizes; ///< by path
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_keptMeasures{
        1, ThreadPriority::BehindTheWindow};
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_looking;
};
