// What the user does on the page of the slices: choosing, looking closer, cleaning.

#include "chart/PieChart.h"
#include "app/PageViews.h"
#include "app/UserDefaults.h"
#include "platform/Alert.h"
#include "platform/ByteCount.h"
#include "platform/Log.h"
#include "platform/ViewAlpha.h"
#include "platform/Workspace.h"
#include "prefs/MessagePopover.h"
#include "slices/CleaningText.h"
#include "slices/ExcludedPaths.h"
#include "slices/FreeSpaceViewController.h"
#include "slices/SizeText.h"
#include "slices/SliceHoverButtons.h"
#include "slices/StartButtonText.h"
#include "widgets/ImageButton.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QFileInfo>

namespace {

constexpr float kPopoverWidth = 200;

} // namespace

void FreeSpaceViewController::didSelectSliceAtIndex(PieChart &, int index)
{
    if (m_isCleaning || index == indexOf(SliceKind::LargeFiles))
        return;
    if (m_selection.toggle(index) == SliceSelection::Toggle::Excluded)
        showMessage(tr("To enable this slice, please remove it's excluded folder from preferences."));
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
    if (m_selection.applyExclusions())
        showMessage(tr("Your preferences have been adjusted, please scan for large files again"));
    m_pieChart->reloadData();
    updateButtonText();
    m_selection.updateSelectedSlicesUserDefaults();
}

void FreeSpaceViewController::showMessage(const QString &text, const QString &informative)
{
    presentAlert(*view(), {.messageText = text, .informativeText = informative});
}

void FreeSpaceViewController::updateButtonText()
{
    if (m_isCleaning)
        return; // a late measure must not overwrite "Cleaning"
    const qint64 total = m_selection.totalSize();
    qCInfo(logVantor).noquote() << QString::number(total);
    const bool isSelected = m_selection.somethingIsSelected();
    const QString sizeText = threeDigitString(stringFromByteCount(total));
    m_startButton->mainText().setAttributedText(isSelected ? startButtonSizeText(sizeText)
                                                           : selectSlicesText());
    m_startButton->detailText().setVisible(isSelected);
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
        return !existingPlaces(*m_selection.records().at(index)).isEmpty();
    default:
        return false;
    }
}

FileUrls FreeSpaceViewController::existingPlaces(const Info &info) const
{
    FileUrls places;
    for (const FileUrl &url : info.fileURLs().value_or(FileUrls())) {
        if (QFileInfo::exists(QFile::decodeName(url.path())))
            places.append(url);
    }
    return places;
}

void FreeSpaceViewController::showInfo()
{
    const int index = m_hoverButtons->currentHoverIndex();
    if (index == SliceHoverButtons::kNoSlice)
        return;
    ImageButton &button = *m_hoverButtons->infoButton();
    MessagePopover::showRelativeToRect(button.rect(), button, Qt::BottomEdge,
                                       QString::fromUtf16(sliceCatalogue()[index].details),
                                       kPopoverWidth);
}

void FreeSpaceViewController::showInFinder()
{
    const int index = m_hoverButtons->currentHoverIndex();
    if (index == SliceHoverButtons::kNoSlice)
        return;
    const Info &info = *m_selection.records().at(index);
    if (index == indexOf(SliceKind::Trash))
        m_services.workspace.openUrl(info.fileURLs()->constLast());
    else
        m_services.workspace.activateFileViewerSelectingUrls(existingPlaces(info));
}

void FreeSpaceViewController::next()
{
    if (!m_selection.somethingIsSelected() || m_isCleaning || !mayClean())
        return;
    askForConfirmation();
}

bool FreeSpaceViewController::mayClean()
{
    UserDefaults &defaults = m_services.defaults;
    if (defaults.exclusionsAreKnown())
        return m_services.grantIsUsable();
    const Alert alert{.style = AlertStyle::Warning,
                      .messageText = tr("Cleaning is off until you have checked your excluded paths."),
                      .informativeText = unknownExclusionsText(defaults.damageMessage(),
                                                               m_selection.excludedPaths()),
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
                      .informativeText = confirmationText(m_selection.records()),
                      .buttons = {{tr("Cancel"), AlertButtonRole::Cancel},
                                  {tr("Delete Files"), AlertButtonRole::Destructive}}};
    presentAlert(*view(), alert, [this](int button) {
        if (button == 1)
            beginCleaning();
    });
}

void FreeSpaceViewController::beginCleaning()
{
    m_isCleaning = true;
    Q_EMIT cleaningChanged(true);
    showCleaningState();
    SliceSelection::Records chosen;
    for (const auto &record : m_selection.records()) {
        if (record->isOn())
            chosen.push_back(record);
    }
    m_job.start(chosen, m_selection.excludedPaths());
}

void FreeSpaceViewController::showCleaningState()
{
    m_startButton->mainText().setText(tr("Cleaning"));
    m_startButton->detailText().setText(QString());
    m_hoverButtons->hide();
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
    const QVariant freed = QVariant::fromValue(m_selection.totalSize());
    m_isCleaning = false;
    Q_EMIT cleaningChanged(false);
    goForward(freed);
    const QString leftAlone = leftAloneText(report);
    if (!leftAlone.isEmpty())
        Q_EMIT placesLeftAlone(leftAlone);
}
