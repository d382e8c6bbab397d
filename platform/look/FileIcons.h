#pragma once

#include <QAbstractFileIconProvider>
#include <QIcon>

/// The drawing of this name (see Images.h) as an icon of 20 points.
QIcon iconNamed(const QString &name);

/// Icons of the program's own for files and folders: the same on every desktop, and made without a
/// look into the files. Any thread once made on the main thread.
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
