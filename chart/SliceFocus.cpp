#include "chart/SliceFocus.h"

#include <algorithm>

namespace {

/// A neighbour counts as level when it is at most this far, in points, from level.
constexpr double kLevel = 1;

} // namespace

int neighbourTowards(QPointF direction, int index, const std::vector<FocusStop> &stops)
{
    if (stops.empty())
        return -1;
    const auto current = std::ranges::find(stops, index, &FocusStop::index);
    if (current == stops.end())
        return stops.front().index;
    const FocusStop &before = current == stops.begin() ? stops.back() : *std::prev(current);
    const FocusStop &behind =
        std::next(current) == stops.end() ? stops.front() : *std::next(current);
    const auto gain = [&](const FocusStop &stop) {
        return QPointF::dotProduct(stop.place - current->place, direction);
    };
    const FocusStop &better = gain(before) > gain(behind) ? before : behind;
    return gain(better) > kLevel ? better.index : index;
}
