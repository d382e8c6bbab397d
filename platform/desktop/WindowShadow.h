#pragma once

#include <QMargins>

class QWidget;

/// Whether a window can tell this system that a part of it is only its shadow. Only then may a
/// window draw a shadow: on any other system the shadow would count as part of the window when
/// windows are placed and clicked. Asks the display each time. Main thread only.
bool canAnnounceShadow();

/// Tells the desktop how wide the window's shadow is at each side. The desktop ignores the shadow
/// when it places windows, and clicks on it go to what lies below. The window must be shown. Call
/// this again whenever the window's size has changed.
void announceShadow(const QWidget &window, QMargins shadow);
