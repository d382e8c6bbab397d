#include "platform/look/FileImages.h"

#include <QHash>
#include <QMimeDatabase>

namespace {

const QString kDiskIcon = QStringLiteral("drive-harddisk");

/// The database has no icon for pictures of whole disks, which are the largest files of many.
bool isDisk(const QString &mimeName)
{
    return mimeName.startsWith(QLatin1String("application/x-")) &&
           (mimeName.endsWith(QLatin1String("image")) || mimeName.endsWith(QLatin1String("-disk")));
}

} // namespace

QString genericIconName(const QByteArray &fileName)
{
    // Only the name's extension counts, so bytes that are no valid text do no harm.
    const QMimeType type =
        QMimeDatabase().mimeTypeForFile(QString::fromUtf8(fileName), QMimeDatabase::MatchExtension);
    return isDisk(type.name()) ? kDiskIcon : type.genericIconName();
}

QString imageNameForGenericIcon(const QString &iconName)
{
    static const QHash<QString, QString> drawings{
        {kDiskIcon, QStringLiteral("documentDisk")},
        {QStringLiteral("application-x-executable"), QStringLiteral("documentProgram")},
        {QStringLiteral("audio-x-generic"), QStringLiteral("documentAudio")},
        {QStringLiteral("image-x-generic"), QStringLiteral("documentImage")},
        {QStringLiteral("package-x-generic"), QStringLiteral("documentArchive")},
        {QStringLiteral("text-x-generic"), QStringLiteral("documentText")},
        {QStringLiteral("text-x-script"), QStringLiteral("documentText")},
        {QStringLiteral("text-html"), QStringLiteral("documentText")},
        {QStringLiteral("video-x-generic"), QStringLiteral("documentVideo")},
        {QStringLiteral("x-office-document"), QStringLiteral("documentText")},
        {QStringLiteral("x-office-presentation"), QStringLiteral("documentText")},
        {QStringLiteral("x-office-spreadsheet"), QStringLiteral("documentText")},
    };
    return drawings.value(iconName, QStringLiteral("document"));
}
