#pragma once

#include <QByteArray>

class QWidget;

/// The permission to come to the front that the desktop gave this program with its start; empty
/// where it gave none. Call it before the application object is made, which takes the permission.
QByteArray givenActivation();

/// Shows the window in front of all others, also when it was minimised. Without the desktop's
/// permission the desktop may only mark the window as one that wants attention. Main thread only.
void bringToFront(QWidget &window, const QByteArray &activation);
