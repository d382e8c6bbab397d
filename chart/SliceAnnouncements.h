#pragma once

class QWidget;

/// Tell assistive technology, if there is any, that the focus is on a slice of a chart, that a
/// slice reads differently, or that its state may have changed. Main thread only.
void announceFocusedSlice(QWidget &chart, int index);
void announceSliceName(QWidget &chart, int index);
void announceSliceState(QWidget &chart, int index);
