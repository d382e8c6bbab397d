#pragma once

#include "platform/sheet/Alert.h"
#include "slices/page/CleaningJob.h"
#include "slices/page/CleaningStates.h"
#include "slices/page/GrantQuestion.h"
#include "slices/page/SliceSelection.h"

class HomeWatch;

/// Leads from the press of the start button to the result: checks the grant, looks for programs
/// that run, measures what the question names, asks the user, checks the grant again and cleans.
/// Where it is, one state says; which event leads where, the table in CleaningStates.h.
///
/// Nothing is removed but what the user has confirmed, and of that nothing that the user has
/// excluded until then or meanwhile. When this is destroyed, a running cleaning stops before its
/// next item. Owned by the page; main thread only.
class CleaningFlow final : public QObject
{
    Q_OBJECT

public:
    /// What it works with; all must outlive it.
    struct Services
    {
        UserDefaults &defaults;
        const SystemCalls &calls;
        FileAccess &access;
        HomeWatch &home;
        SliceSelection &selection;
        GrantQuestion whenGrantIsUsable;
        /// Whether the page is there to be asked on: shown, and without a sheet of its own.
        std::function<bool()> isPageReady;
        /// Shows a question, or a message that needs no answer.
        std::function<void(const Alert &, AlertCompletion)> ask;
        std::function<void(const Alert &)> tell;
    };

    explicit CleaningFlow(Services services, QObject *parent = nullptr);

    CleaningState state() const { return m_state; }
    bool isIdle() const { return m_state == CleaningState::Idle; }
    bool isCleaning() const { return m_state == CleaningState::Cleaning; }

    /// The start button was pressed. Does nothing while there is nothing to be cleaned, or no state
    /// to begin from.
    void start();
    /// The page is left: what is not confirmed yet is asked no more. A cleaning goes on.
    void leave() { handle(CleaningEvent::PageLeft); }
    /// Nothing is removed from now on.
    void requestStop() { m_job.requestStop(); }

Q_SIGNALS:
    /// Comes before anything is done in the new state.
    void stateChanged(CleaningState state, CleaningState before);
    /// The cleaning has ended. `leftAlone` tells people what stayed as a whole, and is empty when
    /// nothing did.
    void finished(qint64 freedBytes, const QString &leftAlone);

private:
    void handle(CleaningEvent event);
    /// These answer the event that comes of it at once; nothing where it has to be awaited.
    std::optional<CleaningEvent> goOn(CleaningEvent event);
    std::optional<CleaningEvent> act();
    std::optional<CleaningEvent> lookForPrograms();
    std::optional<CleaningEvent> measure();

    bool isReady() const;
    bool mayClean();
    bool exclusionsAllowCleaning();
    void checkGrant();
    void grantIsUsable(const std::optional<SliceSelection::Choice> &consent);
    void ask();
    void takeAnswer(const SliceSelection::Choice &asked, int button);
    void clean();
    std::optional<ExcludedPaths> exclusionsBeside(const ExcludedPaths &confirmed) const;
    void finish(const CleaningReport &report);

    Services m_services;
    CleaningState m_state = CleaningState::Idle;
    /// What the user has confirmed, until the grant is checked for it.
    std::optional<SliceSelection::Choice> m_consent;
    CleaningJob m_job;
};
