#pragma once

#include "chart/PieChartDataSource.h"

class SliceSelection;

/// Supplies the pie with the slices of a selection: all of the same size, in the colours of the
/// catalogue while they are on, and grey while they are off. Owned by the page; main thread only.
class SlicesDataSource final : public PieChartDataSource
{
public:
    /// The selection must outlive it.
    explicit SlicesDataSource(const SliceSelection &selection);

    int numberOfSlicesInPieChart(PieChart &chart) override;
    double valueForSliceAtIndex(PieChart &chart, int index) override;
    std::shared_ptr<Info> infoForSliceAtIndex(PieChart &chart, int index) override;
    std::optional<QColor> colorForSliceAtIndex(PieChart &chart, int index) override;
    std::optional<QColor> secondaryColorForSliceAtIndex(PieChart &chart, int index) override;

private:
    const SliceSelection &m_selection;
};
