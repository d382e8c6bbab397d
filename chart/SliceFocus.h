#pragma once

#include <QPointF>
#include <vector>

/// Where the keyboard's focus may go: a slice and where its label is.
struct FocusStop
{
    int index = -1;
    QPointF place;
};

/// The next of the stops before or behind `index` in the ring, whichever lies further in the
/// `direction` (seen in the same plane as the places); `index` itself when both lie the other way
/// or level. The first stop when `index` is none of them; -1 without stops.
int neighbourTowards(QPointF direction, int index, const std::vector<FocusStop> &stops);
