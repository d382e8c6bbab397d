#pragma once

#include "platform/sheet/Alert.h"
#include "slices/page/CleaningJob.h"
#include "slices/page/CleaningStates.h"
#include "slices/page/GrantQuestion.h"
#include "slices/page/SliceSelection.h"

class HomeWatch;

/// Leads from the press of the start button to the result: checks the grant, looks for programs
/// that run, measures what the question names, looks at what stands at its locations, asks the
/// user, checks the grant again and cleans. It is always in one state; the table in
/// CleaningStates.h says which event leads to which state.
///
/// It removes only what the user has confirmed, and of that nothing that the user excluded before
/// or during the cleaning. When this is destroyed, a running cleaning stops before its next item.
/// Owned by the page; main thread only.
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
        /// Whether a question can be shown on the page: it is visible, and has no sheet of its own.
        std::function<bool()> isPageReady;
        /// Shows a question, or a message that needs no answer.
        std::function<void(const Alert &, AlertCompletion)> ask;
        std::function<void(const Alert &)> tell;
    };

    explicit CleaningFlow(Services services, QObject *parent = nullptr);

    CleaningState state() const { return m_state; }
    bool isIdle() const { return m_state == CleaningState::Idle; }
    bool isCleaning() const { return m_state == CleaningState::Cleaning; }

    /// The start button was pressed. Does nothing while there is nothing to clean, or in a state in
    /// which no cleaning can begin.
    void start();
    /// The page is left: a question that is not answered yet is dropped. A cleaning goes on.
    void leave() { handle(CleaningEvent::PageLeft); }
    /// Nothing is removed from now on.
    void requestStop() { m_job.requestStop(); }

Q_SIGNALS:
    /// Emitted before anything is done in the new state.
    void stateChanged(CleaningState state, CleaningState before);
    /// The cleaning has ended. `leftAlone` is a text for the user about what stayed as a whole;
    /// empty when nothing did.
    void finished(qint64 freedBytes, const QString &leftAlone);

private:
    void handle(CleaningEvent event);
    /// These return the event that follows at once; nothing when it comes later.
    std::optional<CleaningEvent> goOn(CleaningEvent event);
    std::optional<CleaningEvent> act();
    std::optional<CleaningEvent> lookForPrograms();
    std::optional<CleaningEvent> measure();

    void identify();
    void takeIdentities(const SliceSelection::Choice &choice, const LocationIdentities &found);
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
    Confirmation m_confirmation; ///< the last one; its locations since before the question
    CleaningJob m_job;
};
