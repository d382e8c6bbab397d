#pragma once

#include "largefiles/preview/GuardedFile.h"
#include "largefiles/search/File.h"
#include "platform/threads/BackgroundQueue.h"

#include <QObject>

class FileIconNames;
class QLabel;

/// Shows the picture of the selected file above the name of the folder that it lies in. Where no
/// file is selected, it shows a hint at what there is to do. The file's icon is shown at once. A
/// picture of the file's content follows, which is read on a thread of its own.
///
/// Owned by the sheet. Main thread only.
class SelectionPicture final : public QObject
{
    Q_OBJECT

public:
    /// Folders are named from `home` on. The icons' names must outlive it.
    SelectionPicture(FileReading reading, FileIconNames &icons, FileUrl home);

    /// Sets the labels that show them. Call this before all else; the labels must outlive this
    /// object's use.
    void setLabels(QLabel &picture, QLabel &place);
    QLabel *label() const { return m_label; }

    void showFile(const File &file);
    /// The hint instead of a picture.
    void showNothing(const QString &hint);
    /// Another hint, while no file is shown.
    void setHint(const QString &hint);

Q_SIGNALS:
    /// The picture shows the selected file, or nothing.
    void shown();

private:
    QString placeOf(const FileUrl &file) const;

    FileReading m_reading;
    FileIconNames &m_icons;
    FileUrl m_home;
    QLabel *m_label = nullptr;
    QLabel *m_placeLabel = nullptr;
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_thumbnails;
};
