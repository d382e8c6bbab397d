#include "slices/page/FreeSpaceViewController.h"

#include "app/navigation/PageViews.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "chart/PieChart.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/look/ViewAlpha.h"
#include "platform/sheet/Alert.h"
#include "platform/sheet/Sheet.h"
#include "prefs/tutorial/DemoWindowController.h"
#include "widgets/LegendView.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QTimer>

namespace {

constexpr double kLabelRadius = 155.0;
constexpr std::chrono::seconds kEntrance{1};
constexpr std::chrono::seconds kPauseBeforeTutorial{1};

} // namespace

FreeSpaceViewController::FreeSpaceViewController(const InterfaceLoader &loader, Services services,
                                                 QObject *parent)
    : VNTViewController(loader, parent),
      m_services(std::move(services)),
      m_labelController(nullptr, m_services.readVolume),
      m_selection(m_services.defaults, m_services.access),
      m_dataSource(m_selection),
      m_home({m_services.calls, m_services.access, m_services.homeFolder,
              [this] { return !m_isCleaning; }},
             m_selection),
      m_loader(loader),
      m_job(m_services.calls, m_services.access)
{
    connect(&m_job, &CleaningJob::finished, this, &FreeSpaceViewController::finishCleaning);
}

FreeSpaceViewController::~FreeSpaceViewController()
{
    m_job.requestStop(); // first: a cleaning may be waiting for the measures
    m_home.stopMeasuring();
}

void FreeSpaceViewController::viewDidLoad()
{
    connectOutlets();
    m_pieChart->setDataSource(&m_dataSource);
    m_pieChart->setDelegate(this);
    m_pieChart->setInfoRadius(kLabelRadius);
    setAlphaValue(*m_legendImageView, 0);
    connect(m_startButton, &StartButton::triggered, this, &FreeSpaceViewController::next);
    m_hover = std::make_unique<SliceHover>(
        *m_pieChart,
        SliceHover::Services{m_services.calls, m_services.access, m_services.workspace, m_home,
                             m_selection, [this](const Alert &alert) { showMessage(alert); }});
    makePicking();
    connect(&m_home, &HomeWatch::found, this, &FreeSpaceViewController::homeWasFound);
    connect(&m_home, &HomeWatch::programsChanged, this, &FreeSpaceViewController::showChoice);
    connect(&m_home, &HomeWatch::sizeChanged, this, &FreeSpaceViewController::updateButtonText);
    connect(&m_services.excludedFilesChanged, &ExcludedFilesChangedNotification::posted, this,
            &FreeSpaceViewController::updateExcludedFiles);
}

void FreeSpaceViewController::connectOutlets()
{
    m_pieChart = outlet<PieChart>(*view(), "pieChart");
    m_startButton = outlet<StartButton>(*view(), "startButton");
    m_legendImageView = outlet<LegendView>(*view(), "legendImageView");
    connectSizeLabels(m_labelController, *view());
}

void FreeSpaceViewController::makePicking()
{
    m_picking = std::make_unique<LargeFilesPicking>(
        *view(), LargeFilesPicking::Services{
                     m_loader, m_services.defaults, m_services.calls, m_services.access,
                     m_services.workspace, m_home, m_selection, m_services.whenGrantIsUsable,
                     [this] { return isShown() && !m_isAsking && !m_isCleaning; },
                     [this] { return !m_isCleaning; }});
    connect(m_picking.get(), &LargeFilesPicking::picked, this,
            &FreeSpaceViewController::takePickedFiles);
    connect(m_picking.get(), &LargeFilesPicking::sizeChanged, m_pieChart, &PieChart::reloadData);
}

void FreeSpaceViewController::takePickedFiles()
{
    showChoice();
    m_selection.updateSelectedSlicesUserDefaults();
}

void FreeSpaceViewController::viewWillAppear(bool)
{
    m_presence = Presence::Coming;
    m_owesTutorial = false;
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
    enableStartButton();
    QTimer::singleShot(kPauseBeforeTutorial, this,
                       &FreeSpaceViewController::showTutorialUnlessDeclined);
}

void FreeSpaceViewController::showTutorialUnlessDeclined()
{
    m_owesTutorial = isShown() && m_isAsking;
    // A page that has left the window meanwhile has none to show a sheet on.
    if (isShown() && view()->isVisible() && !m_isAsking && !m_isCleaning &&
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

void FreeSpaceViewController::viewWillDisappear(bool)
{
    m_presence = Presence::Away;
    m_hover->stop();
    m_home.stop();
    endAsking();
    m_startButton->setEnabled(false);
    m_home.stopMeasuring();
    m_selection.record(SliceKind::LargeFiles).setIsOn(false);
    m_selection.updateSelectedSlicesUserDefaults();
}
