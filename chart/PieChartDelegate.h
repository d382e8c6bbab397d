#pragma once

#include "platform/base/WeakReference.h"

#include <QString>
#include <optional>

class PieChart;

/// Hears what the user does with the slices of a PieChart. Every operation is optional. Held weakly
/// by the chart; main thread only.
class PieChartDelegate : public WeaklyReferable
{
public:
    virtual ~PieChartDelegate() = default;

    /// The user clicked the slice, or chose it with the keyboard or a screen reader. Always the
    /// index of a slice. The chart may be reloaded from here.
    virtual void didSelectSliceAtIndex(PieChart &, int) {}

    /// The pointer (or the keyboard's focus ring) is over the slice, -1 for none of them. Called at
    /// every move of the pointer, even when the index is the same as before, but only while no
    /// slice moves.
    virtual void didHoverOverSliceAtIndex(PieChart &, int) {}

    /// Whether choosing the slice does something. The keyboard can reach the chart when this is
    /// true for one of its slices, and the focus ring visits only such slices. A click is reported
    /// in any case.
    virtual bool canSelectSliceAtIndex(PieChart &, int) { return false; }

    /// The chart itself never sends these two.
    virtual void willSelectSliceAtIndex(PieChart &, int) {}
    virtual std::optional<QString> toopTipStringAtIndex(PieChart &, int) { return {}; }
};
