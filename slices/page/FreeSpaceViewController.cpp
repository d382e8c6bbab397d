#include "slices/page/FreeSpaceViewController.h"

#include "app/navigation/PageViews.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "chart/PieChart.h"
#include "platform/base/ByteCount.h"
#include "platform/base/Log.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/look/Pace.h"
#include "platform/look/ViewAlpha.h"
#include "platform/sheet/Sheet.h"
#include "prefs/tutorial/DemoWindowController.h"
#include "slices/page/StartButtonText.h"
#include "slices/record/SizeText.h"
#include "widgets/LegendView.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QTimer>

namespace {

constexpr double kLabelRadius = 155.0;
constexpr std::chrono::seconds kEntrance{1};
constexpr std::chrono::seconds kPauseBeforeTutorial{1};

/// A disabled button takes no focus. A button that is enabled late takes it now, unless the user
/// has moved the focus elsewhere on the page meanwhile.
void setEnabledWithFocus(StartButton &button, const QWidget &page, bool isEnabled)
{
    button.setEnabled(isEnabled);
    if (!page.isAncestorOf(page.window()->focusWidget()))
        button.setFocus(Qt::OtherFocusReason);
}

} // namespace

FreeSpaceViewController::FreeSpaceViewController(const InterfaceLoader &loader, Services services,
                                                 QObject *parent)
    : VNTViewController(loader, parent),
      m_services(std::move(services)),
      m_loader(loader),
      m_labelController(nullptr, m_services.readVolume),
      m_selection(m_services.defaults, m_services.access),
      m_dataSource(m_selection),
      m_home({m_services.calls, m_services.access, m_services.homeFolder,
              [this] { return !m_flow.isCleaning(); }},
             m_selection),
      m_flow({m_services.defaults, m_services.calls, m_services.access, m_home, m_selection,
              m_services.whenGrantIsUsable, [this] { return isShown() && !m_picking->isPicking(); },
              [this](const Alert &alert, AlertCompletion completion) {
                  presentAlert(*view(), alert, std::move(completion));
              },
              [this](const Alert &alert) { showMessage(alert); }})
{
}

FreeSpaceViewController::~FreeSpaceViewController()
{
    m_flow.requestStop(); // first: a cleaning may be waiting for the measures
    m_home.stopMeasuring();
}

void FreeSpaceViewController::viewDidLoad()
{
    m_pieChart = outlet<PieChart>(*view(), "pieChart");
    m_startButton = outlet<StartButton>(*view(), "startButton");
    m_legendImageView = outlet<LegendView>(*view(), "legendImageView");
    connectSizeLabels(m_labelController, *view());
    m_pieChart->setDataSource(&m_dataSource);
    m_pieChart->setDelegate(this);
    m_pieChart->setInfoRadius(kLabelRadius);
    setAlphaValue(*m_legendImageView, 0);
    makeParts();
    using Page = FreeSpaceViewController;
    connect(m_startButton, &StartButton::triggered, this, &Page::next);
    connect(&m_home, &HomeWatch::found, this, &Page::homeWasFound);
    connect(&m_home, &HomeWatch::programsChanged, this, &Page::showChoice);
    connect(&m_home, &HomeWatch::sizeChanged, this, &Page::updateButtonText);
    connect(&m_flow, &CleaningFlow::stateChanged, this, &Page::showState);
    connect(&m_flow, &CleaningFlow::finished, this, &Page::finishCleaning);
    connect(&m_services.excludedFilesChanged, &ExcludedFilesChangedNotification::posted, this,
            &Page::updateExcludedFiles);
}

void FreeSpaceViewController::makeParts()
{
    m_hover = std::make_unique<SliceHover>(
        *m_pieChart,
        SliceHover::Services{m_services.calls, m_services.access, m_services.workspace, m_home,
                             m_selection, [this](const Alert &alert) { showMessage(alert); }});
    m_picking = std::make_unique<LargeFilesPicking>(
        *view(), LargeFilesPicking::Services{m_loader, m_services.defaults, m_services.calls,
                                             m_services.access, m_services.workspace, m_home,
                                             m_selection, m_services.whenGrantIsUsable,
                                             [this] { return isShown() && m_flow.isIdle(); },
                                             [this] { return !m_flow.isCleaning(); }});
    connect(m_picking.get(), &LargeFilesPicking::picked, this,
            &FreeSpaceViewController::showChoice);
    connect(m_picking.get(), &LargeFilesPicking::sizeChanged, m_pieChart, &PieChart::reloadData);
}

void FreeSpaceViewController::viewWillAppear(bool)
{
    m_presence = Presence::Coming;
    m_startButton->mainText().setText(tr("Clean"));
    m_startButton->detailText().setText(tr("Click to free"));
    m_home.look();
    m_startButton->setEnabled(false);
    for (QWidget *subview : directSubviews(*view()))
        setAlphaValue(*subview, 1);
}

void FreeSpaceViewController::viewDidAppear(bool)
{
    m_pieChart->setDidLoad(false);
    m_labelController.reloadData();
    m_pieChart->reloadData();
    animateAlphaValue(*m_startButton, 1, kEntrance);
    animateAlphaValue(*m_legendImageView, 1, kEntrance);
    m_pieChart->setDrawShadow(true);
    if (m_presence != Presence::Coming)
        return; // left again before it had come in
    m_presence = Presence::Shown;
    setEnabledWithFocus(*m_startButton, *view(), m_home.isKnown());
    QTimer::singleShot(paced(kPauseBeforeTutorial), this,
                       &FreeSpaceViewController::showTutorialUnlessDeclined);
}

void FreeSpaceViewController::viewWillDisappear(bool)
{
    m_presence = Presence::Away;
    m_hover->stop();
    m_home.stop();
    m_flow.leave();
    m_startButton->setEnabled(false);
    m_home.stopMeasuring();
    m_selection.record(SliceKind::LargeFiles).setIsOn(false);
    m_selection.updateSelectedSlicesUserDefaults();
}

void FreeSpaceViewController::showTutorialUnlessDeclined()
{
    if (!isShown())
        return;
    const bool isAsking = !m_flow.isIdle() && !m_flow.isCleaning();
    m_presence = isAsking ? Presence::OwingTutorial : Presence::Shown;
    // A page that has left the window meanwhile has no window to show a sheet on.
    if (view()->isVisible() && m_flow.isIdle() &&
        !m_services.defaults.boolean(VNTHideDemoWindowString))
        presentSheet(*view(), *demoWindowController().window());
}

DemoWindowController &FreeSpaceViewController::demoWindowController()
{
    if (!m_demoWindowController)
        m_demoWindowController =
            std::make_unique<DemoWindowController>(m_loader, m_services.defaults);
    return *m_demoWindowController;
}

void FreeSpaceViewController::homeWasFound()
{
    if (!isShown())
        return; // shown when it appears
    m_pieChart->reloadData();
    setEnabledWithFocus(*m_startButton, *view(), m_home.isKnown());
    updateButtonText();
}

void FreeSpaceViewController::didSelectSliceAtIndex(PieChart &, int index)
{
    if (m_flow.isCleaning())
        return;
    if (index == indexOf(SliceKind::LargeFiles))
        return m_picking->pick();
    if (m_selection.toggle(index) == SliceSelection::Toggle::Excluded)
        showMessage(
            {.messageText = tr("To enable this slice, please remove it's excluded folder from "
                               "preferences.")});
    m_selection.updateSelectedSlicesUserDefaults();
    showChoice();
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
    if (m_flow.isCleaning())
        return; // handled after the cleaning, which reads the list itself
    m_picking->drop();
    if (m_selection.applyExclusions() && !m_picking->isPicking())
        showMessage({.messageText = tr("Your preferences have been adjusted, please scan for "
                                       "large files again")});
    showChoice();
    m_selection.updateSelectedSlicesUserDefaults();
}

void FreeSpaceViewController::showMessage(const Alert &alert)
{
    if (view()->isVisible())
        presentAlert(*view(), alert);
    else
        Q_EMIT tells(alert); // a sheet on a page without window could never be answered
}

void FreeSpaceViewController::showChoice()
{
    m_pieChart->reloadData();
    updateButtonText();
}

void FreeSpaceViewController::updateButtonText()
{
    if (m_flow.isCleaning() || !isShown())
        return; // a late measure must not overwrite "Cleaning", nor a figure on its way out
    const qint64 total = m_selection.totalSize();
    qCInfo(logVantor).noquote() << QString::number(total);
    const bool isSelected = m_selection.somethingIsSelected();
    const QString sizeText = threeDigitString(stringFromByteCount(total));
    m_startButton->mainText().setAttributedText(isSelected ? startButtonSizeText(sizeText)
                                                           : selectSlicesText());
    m_startButton->detailText().setVisible(isSelected);
}

void FreeSpaceViewController::next()
{
    m_flow.start();
}

void FreeSpaceViewController::showState(CleaningState state, CleaningState before)
{
    switch (state) {
    case CleaningState::CheckingGrant:
        m_startButton->detailText().setText(tr("Looking…"));
        break;
    case CleaningState::LookingForPrograms:
    case CleaningState::Measuring:
    case CleaningState::Identifying:
        break; // still looking
    case CleaningState::Asking:
        m_startButton->detailText().setText(tr("Click to free"));
        break;
    case CleaningState::Idle:
        if (before == CleaningState::Cleaning)
            break; // the page goes out as it is
        m_startButton->detailText().setText(tr("Click to free"));
        if (m_presence == Presence::OwingTutorial)
            showTutorialUnlessDeclined();
        break;
    case CleaningState::Cleaning:
        showCleaning();
        break;
    }
}

void FreeSpaceViewController::showCleaning()
{
    Q_EMIT cleaningChanged(true);
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

void FreeSpaceViewController::finishCleaning(qint64 freedBytes, const QString &leftAlone)
{
    m_picking->drop();
    m_selection.applyExclusions(); // what was excluded meanwhile
    m_selection.updateSelectedSlicesUserDefaults();
    Q_EMIT cleaningChanged(false);
    goForward(freedBytes);
    if (!leftAlone.isEmpty())
        Q_EMIT tells({.style = AlertStyle::Warning,
                      .messageText = tr("Some places were left alone."),
                      .informativeText = leftAlone});
}
