#pragma once

#include "app/navigation/VNTViewController.h"
#include "chart/PieChartDataSource.h"
#include "chart/PieChartDelegate.h"
#include "widgets/LabelController.h"

class PieChart;
class StartButton;

/// The page that shows how the start-up volume is used: a pie of free and used space, their sizes,
/// and the button that leads to the slices. Reads the volume again at every appearance. Owned by
/// the main window's controller; main thread only.
class DiskInfoViewController final : public VNTViewController,
                                     public PieChartDataSource,
                                     public PieChartDelegate
{
    Q_OBJECT

public:
    explicit DiskInfoViewController(const InterfaceLoader &loader,
                                    LabelController::Reader reader = startUpVolumeSizes,
                                    QObject *parent = nullptr);

    PieChart *pieChart() const { return m_pieChart; }
    StartButton *startButton() const { return m_startButton; }
    LabelController &labelController() { return m_labelController; }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    int numberOfSlicesInPieChart(PieChart &chart) override;
    double valueForSliceAtIndex(PieChart &chart, int index) override;
    std::optional<QColor> colorForSliceAtIndex(PieChart &chart, int index) override;
    std::shared_ptr<Info> infoForSliceAtIndex(PieChart &chart, int index) override;
    std::optional<QString> accessibleNameForSliceAtIndex(PieChart &chart, int index) override;

public Q_SLOTS:
    /// The start button's action: on to the slices.
    void next();

private:
    void connectOutlets();

    LabelController m_labelController;
    PieChart *m_pieChart = nullptr;
    StartButton *m_startButton = nullptr;
};
