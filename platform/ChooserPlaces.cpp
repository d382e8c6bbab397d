#include "platform/ChooserPlaces.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

QString startFolder(const QByteArray &wanted)
{
    const QString folder = QFile::decodeName(wanted);
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

QList<QUrl> sidebarPlaces()
{
    QList<QUrl> places{QUrl::fromLocalFile(QDir::homePath())};
    for (const auto location : {QStandardPaths::DesktopLocation, QStandardPaths::DocumentsLocation,
                                QStandardPaths::DownloadLocation, QStandardPaths::MusicLocation,
                                QStandardPaths::PicturesLocation, QStandardPaths::MoviesLocation}) {
        const QUrl place = QUrl::fromLocalFile(QStandardPaths::writableLocation(location));
        if (!places.contains(place) && QFileInfo(place.toLocalFile()).isDir())
            places.append(place);
    }
    places.append(QUrl(QStringLiteral("file:")));
    return places;
}

} // namespace

ChooserPlaces findChooserPlaces(const QByteArray &wanted)
{
    return {startFolder(wanted), sidebarPlaces()};
}
