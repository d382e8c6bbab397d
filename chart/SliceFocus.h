#pragma once

#include <QPointF>
#include <vector>

/// Where the keyboard's focus may go: a slice and the position of its label.
struct FocusStop
{
    int index = -1;
    QPointF place;
};

/// Looks at the stops next to `index` in the ring, before and after it, and returns the one that
/// lies further in the `direction` (in the same plane as the positions). Returns `index` itself
/// when both are level or lie in the opposite direction. Returns the first stop when `index` is not
/// one of the stops, and -1 without stops.
int neighbourTowards(QPointF direction, int index, const std::vector<FocusStop> &stops);
