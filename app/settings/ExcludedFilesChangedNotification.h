#pragma once

#include <QObject>

/// VNTExcludedFilesChangedNotification: says that the excluded paths in the settings were written.
/// Made by the start-up, posted by the preferences, observed by the slices page. Main thread only.
class ExcludedFilesChangedNotification final : public QObject
{
    Q_OBJECT

public:
    /// The observers have run when this returns.
    void post() { Q_EMIT posted(); }

Q_SIGNALS:
    void posted();
};
