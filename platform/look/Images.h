#pragma once

#include <QPixmap>
#include <QString>

/// The drawings of the application, by the name of their resource (":/images/<name>.svg"). Sharp
/// at any size and scale; kept in Qt's picture cache. Main thread only.

/// Whether there is a drawing of this name.
bool hasImageNamed(const QString &name);

/// The size that the drawing was made for, in points; empty where there is none.
QSize imageSize(const QString &name);

/// The drawing, fitted into `size` points with its proportions kept, for a screen of the given
/// scale. Null where there is no drawing of this name. Without a size, the drawing's own size is
/// used.
QPixmap imageNamed(const QString &name, qreal scale, QSize size = {});
