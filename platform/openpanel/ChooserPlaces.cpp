#include "platform/openpanel/ChooserPlaces.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

QString chooserStart(const QByteArray &wanted)
{
    const QString folder = QFile::decodeName(wanted);
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

QList<QUrl> sidePlaces()
{
    QList<QUrl> places{QUrl::fromLocalFile(QDir::homePath())};
    for (const auto location : {QStandardPaths::DesktopLocation, QStandardPaths::DocumentsLocation,
                                QStandardPaths::DownloadLocation, QStandardPaths::MusicLocation,
                                QStandardPaths::PicturesLocation, QStandardPaths::MoviesLocation}) {
        const QUrl place = QUrl::fromLocalFile(QStandardPaths::writableLocation(location));
        if (!places.contains(place))
            places.append(place);
    }
    return places;
}

bool isPlaceThere(const QUrl &place)
{
    return QFileInfo(place.toLocalFile()).isDir();
}
