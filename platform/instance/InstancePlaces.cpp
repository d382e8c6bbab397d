#include "platform/instance/InstancePlaces.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace {

/// Characters of the folder's hash: the name of a socket must be short.
constexpr qsizetype kKeyLength = 16;

QString keyOf(const QString &folder)
{
    const QByteArray hash =
        QCryptographicHash::hash(QFile::encodeName(folder), QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex().first(kKeyLength));
}

} // namespace

InstancePlaces InstancePlaces::of(const QString &settingsFolder)
{
    QDir().mkpath(settingsFolder);
    const QDir folder(settingsFolder);
    const QString real = folder.canonicalPath();
    InstancePlaces places;
    places.locks.append(folder.filePath(QStringLiteral("instance.lock")));
    // The user's own folder in memory, gone when the user leaves.
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (runtime.isEmpty())
        return places;
    const QString base =
        runtime + QStringLiteral("/vantor-") + keyOf(real.isEmpty() ? folder.absolutePath() : real);
    places.locks.append(base + QStringLiteral(".lock"));
    places.socket = base + QStringLiteral(".socket");
    return places;
}
