#include "platform/look/FileIcons.h"

#include "platform/look/Images.h"

#include <QDir>

QIcon iconNamed(const QString &name)
{
    constexpr QSize kSize(20, 20);
    QIcon icon;
    for (const qreal scale : {1.0, 2.0, 3.0})
        icon.addPixmap(imageNamed(name, scale, kSize));
    return icon;
}

FileIcons::FileIcons()
    : m_home(QDir::homePath()),
      m_homeIcon(iconNamed(QStringLiteral("homeFolder"))),
      m_folder(iconNamed(QStringLiteral("folder"))),
      m_document(iconNamed(QStringLiteral("document"))),
      m_computer(iconNamed(QStringLiteral("computer")))
{
}

QIcon FileIcons::icon(IconType type) const
{
    switch (type) {
    case Computer:
    case Drive:
    case Network:
        return m_computer;
    case Desktop:
    case Trashcan:
    case Folder:
        return m_folder;
    case File:
        return m_document;
    }
    return m_document;
}

QIcon FileIcons::icon(const QFileInfo &info) const
{
    if (info.isRoot())
        return m_computer;
    if (!info.isDir())
        return m_document;
    return info.filePath() == m_home ? m_homeIcon : m_folder;
}
