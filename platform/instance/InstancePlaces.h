#pragma once

#include <QString>
#include <QStringList>

/// Where the program that uses a folder of settings can be noticed and called. A value; any thread.
struct InstancePlaces
{
    /// The files that it locks. There are two, because either folder may be missing, full or read
    /// only: one that can be locked is enough to notice another program.
    QStringList locks;
    /// The name of its local socket; empty where there is no place for one.
    QString socket;

    /// Makes the folder when there is none. Each folder has places of its own, by whichever path it
    /// is named.
    static InstancePlaces of(const QString &settingsFolder);
};
