#pragma once

#include <QList>
#include <QUrl>

/// Where a file chooser starts, and the places that it offers beside its list: folders that were
/// there when they were looked for. A value.
struct ChooserPlaces
{
    QString start;
    QList<QUrl> sidebar; ///< the home folder first, the computer last
};

/// Looks for them. `wanted` is the raw path at which to start; the home folder when it is empty or
/// no folder. Waits for the disks: not for the main thread.
ChooserPlaces findChooserPlaces(const QByteArray &wanted);
