#pragma once

#include "platform/base/WeakReference.h"

#include <QColor>
#include <QString>
#include <memory>
#include <optional>

class Info;
class PieChart;

/// Supplies the slices of a PieChart. The chart asks while it reloads, and always passes itself as
/// first argument. An index is at least 0 and less than the number of slices. Held weakly by the
/// chart; main thread only.
class PieChartDataSource : public WeaklyReferable
{
public:
    virtual ~PieChartDataSource() = default;

    virtual int numberOfSlicesInPieChart(PieChart &chart) = 0;

    /// What the label shows; null for a slice without label.
    virtual std::shared_ptr<Info> infoForSliceAtIndex(PieChart &chart, int index) = 0;

    /// The size of the slice, in any unit and at least 0. The chart draws each slice as large as
    /// its share of the sum.
    virtual double valueForSliceAtIndex(PieChart &chart, int index) = 0;

    /// Fill colour and first colour of the gradient. Without an answer the chart chooses a colour
    /// by the index.
    virtual std::optional<QColor> colorForSliceAtIndex(PieChart &, int) { return {}; }

    /// Second colour of the gradient; without an answer it equals the first one.
    virtual std::optional<QColor> secondaryColorForSliceAtIndex(PieChart &, int) { return {}; }

    /// The chart itself never asks for it.
    virtual std::optional<QString> textForSliceAtIndex(PieChart &, int) { return {}; }

    /// What a screen reader says for the slice. Without an answer it says the label's name and
    /// size, so answer for slices whose label has no words.
    virtual std::optional<QString> accessibleNameForSliceAtIndex(PieChart &, int) { return {}; }
};
