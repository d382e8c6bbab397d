// What the user does on the page of the slices: choosing and cleaning.

#include "app/navigation/PageViews.h"
#include "app/settings/UserDefaults.h"
#include "chart/PieChart.h"
#include "platform/base/ByteCount.h"
#include "platform/base/Log.h"
#include "platform/look/ViewAlpha.h"
#include "platform/sheet/Alert.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "slices/page/CleaningText.h"
#include "slices/page/FreeSpaceViewController.h"
#include "slices/page/StartButtonText.h"
#include "slices/record/SizeText.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

namespace {

/// Whether nothing was cleaned because nobody knows for sure what is excluded.
bool refusedEverything(const CleaningReport &report)
{
    const RefusalReason first = report.refusals.value(0).reason;
    return report.refusalCount > 0 && report.removedItems == 0 &&
           (first == RefusalReason::UnknownExclusions ||
            first == RefusalReason::UnparsableExclusion);
}

} // namespace

void FreeSpaceViewController::didSelectSliceAtIndex(PieChart &, int index)
{
    if (m_isCleaning)
        return;
    if (index == indexOf(SliceKind::LargeFiles))
        return m_picking->pick();
    if (m_selection.toggle(index) == SliceSelection::Toggle::Excluded)
        showMessage(
            {.messageText = tr("To enable this slice, please remove it's excluded folder from "
                               "preferences.")});
    m_selection.updateSelectedSlicesUserDefaults();
    m_pieChart->reloadData();
    updateButtonText();
}

void FreeSpaceViewController::didHoverOverSliceAtIndex(PieChart &, int index)
{
    m_hover->moveTo(index);
}

bool FreeSpaceViewController::canSelectSliceAtIndex(PieChart &, int)
{
    return true;
}

void FreeSpaceViewController::updateExcludedFiles()
{
    if (m_selection.records().empty())
        return; // not shown yet
    if (m_isCleaning)
        return; // heard when it is over; the cleaning reads the list itself
    m_picking->drop();
    if (m_selection.applyExclusions() && !m_picking->isPicking())
        showMessage({.messageText = tr("Your preferences have been adjusted, please scan for "
                                       "large files again")});
    m_pieChart->reloadData();
    updateButtonText();
    m_selection.updateSelectedSlicesUserDefaults();
}

void FreeSpaceViewController::showMessage(const Alert &alert)
{
    if (view()->isVisible())
        presentAlert(*view(), alert);
    else
        Q_EMIT tells(alert); // a sheet on a page without window could never be answered
}

void FreeSpaceViewController::updateButtonText()
{
    if (m_isCleaning || !isShown())
        return; // a late measure must not overwrite "Cleaning", nor a figure on its way out
    const qint64 total = m_selection.totalSize();
    qCInfo(logVantor).noquote() << QString::number(total);
    const bool isSelected = m_selection.somethingIsSelected();
    const QString sizeText = threeDigitString(stringFromByteCount(total));
    m_startButton->mainText().setAttributedText(isSelected ? startButtonSizeText(sizeText)
                                                           : selectSlicesText());
    m_startButton->detailText().setVisible(isSelected);
}

bool FreeSpaceViewController::isReadyToClean() const
{
    return m_selection.somethingIsSelected() && !m_isCleaning && isShown() &&
           !m_picking->isPicking() && m_home.isKnown();
}

void FreeSpaceViewController::next()
{
    if (!m_isAsking)
        whenMayClean([this] { lookAgainAndConfirm(); });
}

/// Looked at again when the grant has been: the choice may have changed meanwhile.
void FreeSpaceViewController::whenMayClean(std::function<void()> then)
{
    if (!isReadyToClean() || !exclusionsAllowCleaning()) {
        endAsking();
        return;
    }
    beginAsking();
    m_services.whenGrantIsUsable(
        [this, then = std::move(then)] {
            if (isReadyToClean())
                then();
            else
                endAsking();
        },
        [this] { endAsking(); });
}

bool FreeSpaceViewController::exclusionsAllowCleaning()
{
    UserDefaults &defaults = m_services.defaults;
    if (defaults.exclusionsAreKnown()) {
        const QStringList unparsable = m_selection.excludedPaths().unparsable();
        if (!unparsable.isEmpty())
            showMessage({.style = AlertStyle::Warning,
                         .messageText = tr("An excluded path cannot be read."),
                         .informativeText = unparsableExclusionsText(unparsable)});
        return unparsable.isEmpty();
    }
    const Alert alert{
        .style = AlertStyle::Warning,
        .messageText = tr("Cleaning is off until you have checked your excluded paths."),
        .informativeText =
            unknownExclusionsText(defaults.damageMessage(), m_selection.excludedPaths()),
        .buttons = {{tr("Cancel"), AlertButtonRole::Cancel},
                    {tr("These Are Right"), AlertButtonRole::Destructive}}};
    presentAlert(*view(), alert, [&defaults](int button) {
        if (button == 1)
            defaults.confirmExclusions();
    });
    return false;
}

void FreeSpaceViewController::askForConfirmation()
{
    const Alert alert{
        .style = AlertStyle::Critical,
        .messageText = tr("Deleting Files"),
        .informativeText = confirmationText(
            m_selection.records(), {[this](SliceKind kind) { return m_home.programsInUse(kind); },
                                    m_home.layout().nameOfDownloads()}),
        .buttons = {{tr("Cancel"), AlertButtonRole::Cancel},
                    {tr("Delete Files"), AlertButtonRole::Destructive}}};
    m_startButton->detailText().setText(tr("Click to free"));
    presentAlert(*view(), alert, [this, confirmed = m_selection.choice()](int button) {
        if (button == 1)
            beginCleaning(confirmed);
        else
            endAsking();
    });
}

/// Looked at again: the page may have been left, or the settings changed, while the sheet was up.
/// And what was confirmed is cleaned or nothing: a slice may have been switched, a program ended,
/// or an exclusion taken back, before the sheet was answered or while the grant is looked at.
void FreeSpaceViewController::beginCleaning(const SliceSelection::Choice &confirmed)
{
    whenMayClean([this, confirmed] {
        if (confirmed == m_selection.choice())
            clean();
        else
            lookAgainAndConfirm();
    });
}

void FreeSpaceViewController::clean()
{
    m_isAsking = false;
    m_isCleaning = true;
    Q_EMIT cleaningChanged(true);
    showCleaningState();
    m_job.start(
        m_selection.chosen(),
        [this, confirmed = m_selection.excludedPaths()] { return exclusionsBeside(confirmed); },
        m_home.layout());
}

/// What is excluded now, and what was when the user confirmed: an exclusion that is taken back
/// while the cleaning measures is still kept.
std::optional<ExcludedPaths>
FreeSpaceViewController::exclusionsBeside(const ExcludedPaths &confirmed) const
{
    std::optional<ExcludedPaths> excluded = knownExclusions();
    if (!excluded)
        return std::nullopt;
    for (const FileUrl &url : confirmed.urls())
        excluded->add(url);
    return excluded;
}

std::optional<ExcludedPaths> FreeSpaceViewController::knownExclusions() const
{
    if (!m_services.defaults.exclusionsAreKnown())
        return std::nullopt;
    return m_selection.excludedPaths();
}

void FreeSpaceViewController::showCleaningState()
{
    m_startButton->mainText().setText(tr("Cleaning"));
    m_startButton->detailText().setText(QString());
    m_hover->forget();
    for (QWidget *subview : directSubviews(*view())) {
        if (subview != m_startButton && subview != m_pieChart)
            animateAlphaValue(*subview, 0);
    }
    setAlphaValue(*m_startButton, 1);
    m_startButton->setEnabled(false);
    m_pieChart->animateOut();
}

void FreeSpaceViewController::finishCleaning(const CleaningReport &report)
{
    const QVariant freed = refusedEverything(report) ? qint64{0} : m_selection.totalSize();
    m_isCleaning = false;
    m_picking->drop();
    m_selection.applyExclusions(); // what was excluded meanwhile
    m_selection.updateSelectedSlicesUserDefaults();
    Q_EMIT cleaningChanged(false);
    goForward(freed);
    const QString leftAlone = leftAloneText(report);
    if (!leftAlone.isEmpty())
        Q_EMIT tells({.style = AlertStyle::Warning,
                      .messageText = tr("Some places were left alone."),
                      .informativeText = leftAlone});
}
