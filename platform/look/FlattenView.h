#pragma once

#include <QPixmap>
#include <QWidget>

/// The view with all that it holds in one picture, at the scale of its screen; null for a view of
/// zero size. Main thread only.
QPixmap flattenWithSubviews(QWidget &view);
