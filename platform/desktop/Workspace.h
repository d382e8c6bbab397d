#pragma once

#include "platform/files/FileUrl.h"

#include <QObject>
#include <QUrl>

/// The desktop that the program runs on: opens pages and folders, shows files in the file manager.
/// Returns at once; nothing waits for the desktop. Main thread only.
class Workspace : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Opens a page in the browser, a folder in the file manager. False when nothing could be
    /// started.
    virtual bool openUrl(const QUrl &url);
    bool openUrl(const FileUrl &url);

    /// Selects the files in the file manager; opens their folder where it cannot do that. Does
    /// nothing for an empty list.
    virtual void activateFileViewerSelectingUrls(const FileUrls &urls);
};
