#pragma once

#include <QPoint>
#include <QWidget>

/// How much taller the panel of a sheet has to be (or shorter, below nought) so that none of its
/// buttons that destroy comes up under the pointer, as which a click in haste would press it; 0
/// where none does. The buttons go down and up with the panel's lower edge and keep their order and
/// their place at its sides, so that the sheet looks as always. `room` is by how much it may grow.
/// Lays the panel out at its present size. Main thread only.
int pointerClearance(QWidget &panel, QPoint pointer, int room);
