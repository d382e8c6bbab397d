#include "slices/page/CleaningFlow.h"

#include "app/settings/UserDefaults.h"
#include "platform/system/SystemCalls.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "slices/page/CleaningText.h"
#include "slices/page/HomeWatch.h"

#include <utility>

namespace {

/// The button of the questions that goes on; the other one cancels.
constexpr int kGoOnButton = 1;

/// Whether nothing was cleaned because the exclusions are not known for certain, or there was no
/// memory for it.
bool refusedEverything(const CleaningReport &report)
{
    const RefusalReason first = report.refusals.value(0).reason;
    return report.refusalCount > 0 && report.removedItems == 0 &&
           (first == RefusalReason::UnknownExclusions ||
            first == RefusalReason::UnparsableExclusion || first == RefusalReason::OutOfMemory);
}

} // namespace

CleaningFlow::CleaningFlow(Services services, QObject *parent)
    : QObject(parent),
      m_services(std::move(services)),
      m_job(m_services.calls, m_services.access, m_services.defaults.folder())
{
    connect(&m_job, &CleaningJob::finished, this, &CleaningFlow::finish);
}

void CleaningFlow::handle(CleaningEvent event)
{
    for (std::optional<CleaningEvent> next = event; next;)
        next = goOn(*next);
}

std::optional<CleaningEvent> CleaningFlow::goOn(CleaningEvent event)
{
    const std::optional<CleaningState> next = nextState(m_state, event);
    if (!next)
        return std::nullopt; // comes too late, or too early
    const CleaningState before = std::exchange(m_state, *next);
    Q_EMIT stateChanged(m_state, before);
    return act();
}

std::optional<CleaningEvent> CleaningFlow::act()
{
    switch (m_state) {
    case CleaningState::Idle:
        break;
    case CleaningState::CheckingGrant:
        checkGrant();
        break;
    case CleaningState::LookingForPrograms:
        return lookForPrograms();
    case CleaningState::Measuring:
        return measure();
    case CleaningState::Identifying:
        identify();
        break;
    case CleaningState::Asking:
        ask();
        break;
    case CleaningState::Cleaning:
        clean();
        break;
    }
    return std::nullopt;
}

bool CleaningFlow::isReady() const
{
    return m_services.selection.somethingIsSelected() && !isCleaning() &&
           m_services.isPageReady() && m_services.home.isKnown();
}

/// Tells the user when the exclusions do not allow a cleaning.
bool CleaningFlow::mayClean()
{
    return isReady() && exclusionsAllowCleaning();
}

void CleaningFlow::start()
{
    if (isIdle() && mayClean())
        handle(CleaningEvent::Pressed);
}

bool CleaningFlow::exclusionsAllowCleaning()
{
    UserDefaults &defaults = m_services.defaults;
    const ExcludedPaths excluded = m_services.selection.excludedPaths();
    if (defaults.exclusionsAreKnown()) {
        const QStringList &unparsable = excluded.unparsable();
        if (!unparsable.isEmpty())
            m_services.tell({.style = AlertStyle::Warning,
                             .messageText = tr("An excluded path cannot be read."),
                             .informativeText = unparsableExclusionsText(unparsable)});
        return unparsable.isEmpty();
    }
    const Alert alert{.style = AlertStyle::Warning,
                      .messageText =
                          tr("Cleaning is off until you have checked your excluded paths."),
                      .informativeText = unknownExclusionsText(defaults.damageMessage(), excluded),
                      .buttons = {{tr("Cancel"), AlertButtonRole::Cancel},
                                  {tr("These Are Right"), AlertButtonRole::Destructive}}};
    m_services.ask(alert, [&defaults](int button) {
        if (button == kGoOnButton)
            defaults.confirmExclusions();
    });
    return false;
}

/// The disk of the folder may take time to answer. The consent travels with the question that is
/// asked for it.
void CleaningFlow::checkGrant()
{
    m_services.whenGrantIsUsable(
        [this, consent = std::exchange(m_consent, {})] { grantIsUsable(consent); },
        [this] { handle(CleaningEvent::GrantUnusable); });
}

/// Checks everything again: while the sheet was up or the grant was checked, the page may have been
/// left or the settings may have changed. Cleans exactly what was confirmed, or nothing: meanwhile
/// a slice may have been switched, a program may have ended, or an exclusion may have been taken
/// back.
void CleaningFlow::grantIsUsable(const std::optional<SliceSelection::Choice> &consent)
{
    if (!isReady())
        handle(CleaningEvent::NotReady);
    else if (consent == m_services.selection.choice())
        handle(CleaningEvent::ConsentStands);
    else
        handle(CleaningEvent::GrantUsable);
}

/// The confirmation names what stays because of the programs that run now, and the size without it.
std::optional<CleaningEvent> CleaningFlow::lookForPrograms()
{
    if (m_services.home.layout().programs().empty())
        return CleaningEvent::ProgramsFound;
    m_services.home.lookForPrograms([this] { handle(CleaningEvent::ProgramsFound); });
    return std::nullopt;
}

/// Repeats until all slices that the question names are measured: their locations may have changed
/// meanwhile.
std::optional<CleaningEvent> CleaningFlow::measure()
{
    SliceSelection::Records named;
    for (const auto &record : m_services.selection.chosen()) {
        const SliceKind kind = *sliceKindNamed(record->name());
        if (!m_services.home.programsInUse(kind).isEmpty() && !record->isMeasured())
            named.push_back(record);
    }
    if (!isReady())
        return CleaningEvent::NotReady;
    if (named.empty())
        return CleaningEvent::AllMeasured;
    m_services.home.measure(named, [this] { handle(CleaningEvent::Measured); });
    return std::nullopt;
}

/// Before the question, not after it: whatever takes the place of a location while the user reads
/// is not what the question is about.
void CleaningFlow::identify()
{
    FileUrls locations;
    for (const auto &record : m_services.selection.chosen())
        locations += record->fileURLs().value_or(FileUrls());
    m_services.home.identify(
        locations, [this, choice = m_services.selection.choice()](const LocationIdentities &found) {
            takeIdentities(choice, found);
        });
}

void CleaningFlow::takeIdentities(const SliceSelection::Choice &choice,
                                  const LocationIdentities &found)
{
    m_confirmation.locations = found;
    if (!isReady())
        handle(CleaningEvent::NotReady);
    else if (choice != m_services.selection.choice())
        handle(CleaningEvent::ChoiceChanged);
    else
        handle(CleaningEvent::Identified);
}

void CleaningFlow::ask()
{
    const HomeWatch &home = m_services.home;
    const ConfirmationDetails details{
        [&home](SliceKind kind) { return home.programsInUse(kind); },
        home.layout().nameOfDownloads(), home.programsSeen(),
        [&home](SliceKind kind) { return home.layout().outOfReach(kind); }};
    const Alert alert{.style = AlertStyle::Critical,
                      .messageText = tr("Deleting Files"),
                      .informativeText = confirmationText(m_services.selection.records(), details),
                      .buttons = {{tr("Cancel"), AlertButtonRole::Cancel},
                                  {tr("Delete Files"), AlertButtonRole::Destructive}}};
    m_services.ask(alert, [this, asked = m_services.selection.choice()](int button) {
        takeAnswer(asked, button);
    });
}

void CleaningFlow::takeAnswer(const SliceSelection::Choice &asked, int button)
{
    if (button != kGoOnButton) {
        handle(CleaningEvent::Declined);
    } else if (!mayClean()) {
        handle(CleaningEvent::NotReady);
    } else {
        m_consent = asked;
        m_confirmation.moment = m_services.calls.now();
        handle(CleaningEvent::Confirmed);
        m_consent.reset(); // an answer that led nowhere is no consent for a later cleaning
    }
}

/// The settings' file has the last word on what is excluded: another program may have written it.
void CleaningFlow::clean()
{
    const auto findExclusions = [this, confirmed = m_services.selection.excludedPaths()](
                                    const CleaningJob::UseExclusions &use) {
        m_services.defaults.lookAtFile(
            &m_job, [this, confirmed, use] { use(exclusionsBeside(confirmed)); });
    };
    m_job.start(m_services.selection.chosen(), findExclusions, m_confirmation,
                m_services.home.layout());
}

/// What is excluded now, and what was excluded when the user confirmed: an exclusion that is taken
/// back while the cleaning measures still holds. Nothing while the exclusions are not known.
std::optional<ExcludedPaths> CleaningFlow::exclusionsBeside(const ExcludedPaths &confirmed) const
{
    if (!m_services.defaults.exclusionsAreKnown())
        return std::nullopt;
    ExcludedPaths excluded = m_services.selection.excludedPaths();
    for (const FileUrl &url : confirmed.urls())
        excluded.add(url);
    return excluded;
}

void CleaningFlow::finish(const CleaningReport &report)
{
    const qint64 freed = refusedEverything(report) ? 0 : m_services.selection.totalSize();
    handle(CleaningEvent::Cleaned);
    Q_EMIT finished(freed, leftAloneText(report));
}
