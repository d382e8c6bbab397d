#pragma once

class PieChart;

/// Shows every PieChart to assistive technology as a list with one item for each slice, which can
/// be read, focused and pressed. Called by the chart itself; repeated calls do nothing.
void installPieChartAccessibility();

/// Tell assistive technology, if there is any, that the focus is on a slice, that a slice reads
/// differently, or that its state may have changed.
void announceFocusedSlice(PieChart &chart, int index);
void announceSliceName(PieChart &chart, int index);
void announceSliceState(PieChart &chart, int index);
