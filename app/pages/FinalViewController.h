#pragma once

#include "app/navigation/VNTViewController.h"
#include "app/pings/Addresses.h"
#include "chart/PieChartDataSource.h"
#include "chart/PieChartDelegate.h"
#include "widgets/LabelController.h"

#include <functional>

class PieChart;
class StartButton;
class StatsUpdater;
class TextField;
class UserDefaults;

/// The page after a cleaning: shows how much was freed, adds it to the running total, reports the
/// cleaning, and offers three links and another scan. data() is the number of bytes freed. Appears
/// once for each cleaning. Owned by the main window's controller; main thread only.
class FinalViewController final : public VNTViewController,
                                  public PieChartDataSource,
                                  public PieChartDelegate
{
    Q_OBJECT

public:
    /// What the page works with; all must outlive it.
    struct Services
    {
        UserDefaults &defaults;
        StatsUpdater &stats;
        Addresses addresses;
        std::function<bool(const QUrl &)> openUrl; ///< false when nothing could be started
        LabelController::Reader readVolume = startUpVolumeSizes;
    };

    FinalViewController(const InterfaceLoader &loader, Services services,
                        QObject *parent = nullptr);

    PieChart *pieChart() const { return m_pieChart; }
    StartButton *scanAgainButton() const { return m_scanAgainButton; }
    TextField *sizeLabel() const { return m_sizeLabel; }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    int numberOfSlicesInPieChart(PieChart &chart) override;
    double valueForSliceAtIndex(PieChart &chart, int index) override;
    std::optional<QColor> colorForSliceAtIndex(PieChart &chart, int index) override;
    std::shared_ptr<Info> infoForSliceAtIndex(PieChart &chart, int index) override;
    std::optional<QString> accessibleNameForSliceAtIndex(PieChart &chart, int index) override;
    void didSelectSliceAtIndex(PieChart &chart, int index) override;
    bool canSelectSliceAtIndex(PieChart &chart, int index) override;

public Q_SLOTS:
    /// The button's action: back to the slices.
    void scanAgain();

private:
    void connectOutlets();
    void buildSlices();
    void addToTotal(qint64 freed);
    QString addressOfSlice(int index) const;

    Services m_services;
    LabelController m_labelController;
    PieChart *m_pieChart = nullptr;
    StartButton *m_scanAgainButton = nullptr;
    TextField *m_sizeLabel = nullptr;
    QList<std::shared_ptr<Info>> m_infoArray;
    QList<QColor> m_colors;
};
