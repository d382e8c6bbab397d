#pragma once

#include "platform/base/WeakReference.h"

#include <QString>
#include <optional>

class PieChart;

/// Is told what the user does with the slices of a PieChart. Every operation is optional. Held
/// weakly by the chart; main thread only.
class PieChartDelegate : public WeaklyReferable
{
public:
    virtual ~PieChartDelegate() = default;

    /// The user clicked the slice, or chose it with the keyboard or a screen reader. Always the
    /// index of a slice. The chart may be reloaded from here.
    virtual void didSelectSliceAtIndex(PieChart &, int) {}

    /// The pointer (or the keyboard's focus ring) is over the slice, -1 for none of them. Comes
    /// with every move of the pointer, also when the index is the same as before, and only while
    /// nothing moves.
    virtual void didHoverOverSliceAtIndex(PieChart &, int) {}

    /// Whether choosing the slice does something. The chart can be reached with the keyboard when
    /// that is so for one of its slices, and the focus ring visits these alone. A click is told of
    /// in any case.
    virtual bool canSelectSliceAtIndex(PieChart &, int) { return false; }

    /// The chart itself never sends these two.
    virtual void willSelectSliceAtIndex(PieChart &, int) {}
    virtual std::optional<QString> toopTipStringAtIndex(PieChart &, int) { return {}; }
};
