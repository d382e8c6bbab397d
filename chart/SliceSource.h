#pragma once

#include "chart/PieChartDataSource.h"
#include "chart/slice/GradientLayer.h"

#include <vector>

/// What a data source answered about its slices at one time.
struct SliceReading
{
    std::vector<std::shared_ptr<Info>> infos;
    std::vector<double> values; ///< each finite and at least 0
    double sum = 0;

    /// The share of the sum, from 0 to 1.
    double share(std::size_t index) const { return sum != 0 ? values[index] / sum : 0; }
};

/// Asks a pie's data source, and gives its own answer where there is none: the data source may be
/// gone or may not know. Owned by the pie. Main thread only.
class SliceSource final
{
public:
    /// The chart is the one for which this object asks; it must outlive the object.
    explicit SliceSource(PieChart &chart) : m_chart(chart) {}

    PieChartDataSource *get() const { return m_dataSource.get(); }
    void set(PieChartDataSource *dataSource) { m_dataSource = dataSource; }

    /// Nothing without data source.
    SliceReading read() const;

    /// The colour from the data source; nothing when it gives none.
    std::optional<QColor> givenColor(int index) const;
    /// The same; if there is none, a colour by the index.
    QColor color(int index) const;
    /// The gradient from that colour to the second one.
    GradientLayer::Colors gradient(int index) const;

    /// The colour of a slice for which the data source has none.
    static QColor defaultColor(int index);

private:
    PieChart &m_chart;
    WeakReference<PieChartDataSource> m_dataSource;
};
