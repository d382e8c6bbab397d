#pragma once

#include <QMargins>

class QWidget;

/// Whether this system can be told that a part of a window is its shadow alone. Only then may a
/// window draw one: anywhere else it would count as window where windows are placed and clicked.
/// Asks the display each time. Main thread only.
bool canAnnounceShadow();

/// Tells the desktop that so much of the window, at each side, is its shadow: it leaves that out
/// when it places windows, and clicks there go to what lies below. The window is shown; tell again
/// whenever its size has changed.
void announceShadow(const QWidget &window, QMargins shadow);
