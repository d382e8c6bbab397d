#pragma once

#include <QAbstractFileIconProvider>
#include <QIcon>

/// The drawing of this name (see Images.h) as an icon of 20 points.
QIcon iconNamed(const QString &name);

/// The program's own icons for files and folders: they are the same on every desktop, and are made
/// without reading the files. Made on the main thread; any thread may use it from then on.
class FileIcons final : public QAbstractFileIconProvider
{
public:
    FileIcons();

    QIcon icon(IconType type) const override;
    QIcon icon(const QFileInfo &info) const override;

private:
    QString m_home;
    QIcon m_homeIcon;
    QIcon m_folder;
    QIcon m_document;
    QIcon m_computer;
};
