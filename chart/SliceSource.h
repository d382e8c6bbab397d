#pragma once

#include "chart/PieChartDataSource.h"
#include "chart/slice/GradientLayer.h"

#include <vector>

/// What a data source said of its slices at one time.
struct SliceReading
{
    std::vector<std::shared_ptr<Info>> infos;
    std::vector<double> values; ///< each finite and at least 0
    double sum = 0;

    /// Of the sum, from 0 to 1.
    double share(std::size_t index) const { return sum != 0 ? values[index] / sum : 0; }
};

/// Asks a pie's data source, which may have gone or may not know, and has an answer of its own
/// where it says none. Owned by the pie. Main thread only.
class SliceSource final
{
public:
    /// The chart in whose name it asks; must outlive it.
    explicit SliceSource(PieChart &chart) : m_chart(chart) {}

    PieChartDataSource *get() const { return m_dataSource.get(); }
    void set(PieChartDataSource *dataSource) { m_dataSource = dataSource; }

    /// Nothing without data source.
    SliceReading read() const;

    /// As the data source says; nothing when it says none.
    std::optional<QColor> givenColor(int index) const;
    /// The same, or else a colour for the index.
    QColor color(int index) const;
    /// From that colour to the second one.
    GradientLayer::Colors gradient(int index) const;

    /// The colour of a slice for which the data source has none.
    static QColor defaultColor(int index);

private:
    PieChart &m_chart;
    WeakReference<PieChartDataSource> m_dataSource;
};
