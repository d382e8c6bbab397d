#pragma once

#include "app/navigation/VNTViewController.h"
#include "chart/PieChartDelegate.h"
#include "slices/page/CleaningFlow.h"
#include "slices/page/HomeWatch.h"
#include "slices/page/LargeFilesPicking.h"
#include "slices/page/SliceHover.h"
#include "slices/page/SlicesDataSource.h"
#include "widgets/LabelController.h"

#include <functional>
#include <memory>

class DemoWindowController;
class ExcludedFilesChangedNotification;
class LargeFilesWindowController;
class PieChart;
class StartButton;
class SystemCalls;
class UserDefaults;
class Workspace;
struct Alert;

/// The page of the slices: shows the eight kinds of content on a pie, measures them in the
/// background, lets the user switch them on and off, and cleans those that are on. Every visit
/// measures afresh. It has the controls and shows the work of its parts: the survey of the home,
/// the cleaning, the offers under the pointer, and the picking of large files. Owned by the main
/// window's controller; main thread only.
class FreeSpaceViewController final : public VNTViewController, public PieChartDelegate
{
    Q_OBJECT

public:
    /// What the page works with; all must outlive it.
    struct Services
    {
        UserDefaults &defaults;
        const SystemCalls &calls;
        FileAccess &access;
        Workspace &workspace;
        ExcludedFilesChangedNotification &excludedFilesChanged;
        std::function<FileUrl()> homeFolder;
        GrantQuestion whenGrantIsUsable; ///< asked before files are picked and before a cleaning
        LabelController::Reader readVolume = startUpVolumeSizes;
    };

    FreeSpaceViewController(const InterfaceLoader &loader, Services services,
                            QObject *parent = nullptr);
    ~FreeSpaceViewController() override;

    PieChart *pieChart() const { return m_pieChart; }
    StartButton *startButton() const { return m_startButton; }
    SliceSelection &selection() { return m_selection; }
    SliceHover &hover() { return *m_hover; }
    /// The tutorial; made on first use and kept.
    DemoWindowController &demoWindowController();
    /// The sheet in which large files are picked; made on first use and kept.
    LargeFilesWindowController &largeFilesWindowController()
    {
        return m_picking->windowController();
    }
    bool isCleaning() const { return m_flow.isCleaning(); }
    /// Where everything is in the home; unknown until it has been looked at.
    const HomeLayout &homeLayout() const { return m_home.layout(); }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    void didSelectSliceAtIndex(PieChart &chart, int index) override;
    void didHoverOverSliceAtIndex(PieChart &chart, int index) override;
    bool canSelectSliceAtIndex(PieChart &chart, int index) override;

public Q_SLOTS:
    /// The start button's action: asks for confirmation, then cleans.
    void next();
    /// A slice was measured, or the choice changed.
    void updateButtonText();
    /// The excluded paths changed.
    void updateExcludedFiles();

Q_SIGNALS:
    /// True from the confirmation until the next page takes over: meanwhile there is no way back.
    void cleaningChanged(bool isCleaning);
    /// A message for the user while this page is in no window.
    void tells(const Alert &alert);

private:
    enum class Presence {
        Away,   ///< also on its way out
        Coming, ///< on its way in
        Shown,
        OwingTutorial, ///< shown; the tutorial was due while a question was up
    };

    bool isShown() const
    {
        return m_presence == Presence::Shown || m_presence == Presence::OwingTutorial;
    }
    void makeParts();
    void showTutorialUnlessDeclined();
    void homeWasFound();
    void showChoice();
    void showState(CleaningState state, CleaningState before);
    void showCleaning();
    void finishCleaning(qint64 freedBytes, const QString &leftAlone);
    void showMessage(const Alert &alert);

    Services m_services;
    const InterfaceLoader &m_loader;
    LabelController m_labelController;
    SliceSelection m_selection;
    SlicesDataSource m_dataSource;
    HomeWatch m_home;
    CleaningFlow m_flow;
    std::unique_ptr<SliceHover> m_hover;          ///< made with the view
    std::unique_ptr<LargeFilesPicking> m_picking; ///< the same
    std::unique_ptr<DemoWindowController> m_demoWindowController;
    Presence m_presence = Presence::Away;
    PieChart *m_pieChart = nullptr;
    StartButton *m_startButton = nullptr;
    QWidget *m_legendImageView = nullptr;
};
