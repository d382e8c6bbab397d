// What the user does on the page of the slices: choosing, looking closer, cleaning.

#include "app/PageViews.h"
#include "app/UserDefaults.h"
#include "chart/PieChart.h"
#include "platform/Alert.h"
#include "platform/ByteCount.h"
#include "platform/Log.h"
#include "platform/ViewAlpha.h"
#include "platform/Workspace.h"
#include "prefs/MessagePopover.h"
#include "slices/AnchoredFolder.h"
#include "slices/CleaningText.h"
#include "slices/ExcludedPaths.h"
#include "slices/FreeSpaceViewController.h"
#include "slices/SizeText.h"
#include "slices/SliceHoverButtons.h"
#include "slices/StartButtonText.h"
#include "widgets/ImageButton.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

namespace {

constexpr float kPopoverWidth = 200;

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
        return pickLargeFiles();
    if (m_selection.toggle(index) == SliceSelection::Toggle::Excluded)
        showMessage(
            {.messageText = tr("To enable this slice, please remove it's excluded folder from "
                               "preferences.")});
    m_selection.updateSelectedSlicesUserDefaults();
    m_pieChart->reloadData();
    updateButtonText();
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
    dropLargeFiles();
    if (m_selection.applyExclusions() && !isPickingLargeFiles())
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
    if (m_isCleaning || !m_isShown)
        return; // a late measure must not overwrite "Cleaning", nor a figure on its way out
    const qint64 total = m_selection.totalSize();
    qCInfo(logVantor).noquote() << QString::number(total);
    const bool isSelected = m_selection.somethingIsSelected();
    const QString sizeText = threeDigitString(stringFromByteCount(total));
    m_startButton->mainText().setAttributedText(isSelected ? startButtonSizeText(sizeText)
                                                           : selectSlicesText());
    m_startButton->detailText().setVisible(isSelected);
}

/// The pie moves away below the pointer.
void FreeSpaceViewController::forgetHover()
{
    m_hoverButtons->setCurrentHoverIndex(SliceHoverButtons::kNoSlice);
    m_hoverButtons->hide();
}

void FreeSpaceViewController::didHoverOverSliceAtIndex(PieChart &, int index)
{
    if (index == m_hoverButtons->currentHoverIndex())
        return;
    m_hoverButtons->setCurrentHoverIndex(index);
    m_hoverButtons->hide();
    if (index == SliceHoverButtons::kNoSlice)
        return;
    const auto count = static_cast<int>(sliceCatalogue().size());
    m_hoverButtons->placeOnSlice(index, count,
                                 offersReveal(index) ? RevealOffer::Yes : RevealOffer::No);
}

bool FreeSpaceViewController::offersReveal(int index) const
{
    switch (sliceCatalogue()[index].kind) {
    case SliceKind::Trash:
    case SliceKind::Downloads:
    case SliceKind::MailDownloads:
        return true;
    case SliceKind::OldIos:
        return hasPlaces(*m_selection.records().at(index));
    default:
        return false;
    }
}

/// Asked at every move onto a slice: of a home that was looked at, all places are there.
bool FreeSpaceViewController::hasPlaces(const Info &info) const
{
    if (m_home.layout.kind() == HomeKind::Freedesktop)
        return !info.fileURLs().value_or(FileUrls()).isEmpty();
    return !existingPlaces(info).isEmpty();
}

FileUrls FreeSpaceViewController::existingPlaces(const Info &info) const
{
    FileUrls places;
    for (const FileUrl &url : info.fileURLs().value_or(FileUrls())) {
        if (exists(url))
            places.append(url);
    }
    return places;
}

bool FreeSpaceViewController::exists(const FileUrl &url) const
{
    const AccessScope access(m_services.access);
    const std::optional<AnchoredPath> place = m_services.access.anchoredPath(url);
    if (!place)
        return false;
    const auto [around, name] = anchoredEntry(*place);
    const auto folder = openAnchored(m_services.calls, around, Descent::Strict);
    return folder && m_services.calls.status(folder->get(), name.constData());
}

void FreeSpaceViewController::showInfo()
{
    const int index = m_hoverButtons->currentHoverIndex();
    if (index == SliceHoverButtons::kNoSlice)
        return;
    const SliceKind kind = sliceCatalogue()[index].kind;
    ImageButton &button = *m_hoverButtons->infoButton();
    MessagePopover::showRelativeToRect(button.rect(), button, Qt::BottomEdge,
                                       m_home.layout.details(kind) + inUseText(programsInUse(kind)),
                                       kPopoverWidth);
}

void FreeSpaceViewController::showInFinder()
{
    const int index = m_hoverButtons->currentHoverIndex();
    if (index == SliceHoverButtons::kNoSlice || m_home.layout.kind() == HomeKind::Unknown)
        return;
    const Info &info = *m_selection.records().at(index);
    if (index == indexOf(SliceKind::Trash))
        m_services.workspace.openUrl(m_home.layout.trashFolder());
    else
        m_services.workspace.activateFileViewerSelectingUrls(existingPlaces(info));
}

bool FreeSpaceViewController::isReadyToClean() const
{
    return m_selection.somethingIsSelected() && !m_isCleaning && m_isShown &&
           m_home.layout.kind() != HomeKind::Unknown;
}

void FreeSpaceViewController::next()
{
    whenMayClean([this] { lookAgainAndConfirm(); });
}

/// Looked at again when the grant has been: the page may have been left meanwhile.
void FreeSpaceViewController::whenMayClean(std::function<void()> then)
{
    if (!isReadyToClean() || !exclusionsAllowCleaning())
        return;
    m_services.whenGrantIsUsable([this, then = std::move(then)] {
        if (isReadyToClean())
            then();
    });
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
    const Alert alert{.style = AlertStyle::Critical,
                      .messageText = tr("Deleting Files"),
                      .informativeText =
                          confirmationText(m_selection.records(),
                                           {[this](SliceKind kind) { return programsInUse(kind); },
                                            m_home.layout.nameOfDownloads()}),
                      .buttons = {{tr("Cancel"), AlertButtonRole::Cancel},
                                  {tr("Delete Files"), AlertButtonRole::Destructive}}};
    presentAlert(*view(), alert, [this](int button) {
        if (button == 1)
            beginCleaning();
    });
}

/// Asked again: the page may have been left, or the settings changed, while the sheet was up. And
/// what was confirmed is cleaned or nothing: a slice may be switched while the grant is looked at.
void FreeSpaceViewController::beginCleaning()
{
    whenMayClean([this, confirmed = m_selection.chosen()] {
        if (confirmed == m_selection.chosen())
            clean(confirmed);
    });
}

void FreeSpaceViewController::clean(const SliceSelection::Records &chosen)
{
    m_isCleaning = true;
    Q_EMIT cleaningChanged(true);
    showCleaningState();
    m_job.start(
        chosen, [this] { return knownExclusions(); }, m_home.layout);
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
    forgetHover();
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
    dropLargeFiles();
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
