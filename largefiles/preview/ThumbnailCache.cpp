#include "largefiles/preview/ThumbnailCache.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cmath>

namespace {

struct CacheFolder
{
    const char *name;
    int side; ///< of its pictures, in pixels, at most
};

constexpr std::array<CacheFolder, 4> kFolders{
    {{"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}}};
constexpr qint64 kLargestFile = 16LL * 1024 * 1024;

/// Some programs write the time with a fraction. Only its whole seconds count.
bool isOfTime(const QString &text, const QDateTime &modified)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    const double wanted = std::floor(double(modified.toMSecsSinceEpoch()) / 1000.0);
    return isNumber && std::floor(seconds) == wanted;
}

/// Where the cache keeps this file's picture in one of its sizes.
QString cachePath(const CacheFolder &folder, const QByteArray &uri)
{
    const QByteArray sum = QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex();
    const QDir caches(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    return caches.filePath(QStringLiteral("thumbnails/%1/%2.png")
                               .arg(QLatin1String(folder.name), QString::fromLatin1(sum)));
}

QImage readCached(const CacheFolder &folder, const FileUrl &file, const QDateTime &modified)
{
    const QByteArray uri = file.absoluteString();
    const QString path = cachePath(folder, uri);
    const QFileInfo info(path);
    if (!info.isFile() || info.size() > kLargestFile)
        return {};
    // The reader's own text() cuts keys at their first colon.
    const QImage image = QImageReader(path, "png").read();
    const bool isValid = image.text(QStringLiteral("Thumb::URI")) == QString::fromLatin1(uri) &&
                         isOfTime(image.text(QStringLiteral("Thumb::MTime")), modified);
    return isValid ? image : QImage();
}

const CacheFolder *folderFor(int side)
{
    const auto fits = [side](const CacheFolder &folder) { return folder.side >= side; };
    const auto *const folder = std::find_if(kFolders.begin(), kFolders.end(), fits);
    return folder != kFolders.end() ? folder : &kFolders.back();
}

/// Makes the folder and the missing folders above it; only the user may use them.
bool makePrivateFolder(const QString &path)
{
    constexpr auto kPrivate = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    QStringList missing;
    for (QString folder = path; !QFileInfo(folder).isDir(); folder = QFileInfo(folder).path())
        missing.prepend(folder);
    return std::all_of(missing.cbegin(), missing.cend(), [kPrivate](const QString &folder) {
        return QDir().mkdir(folder, kPrivate);
    });
}

} // namespace

int cachedSide(int side)
{
    return folderFor(side)->side;
}

QImage cachedThumbnail(const FileUrl &file, const QDateTime &modified, int side)
{
    for (const CacheFolder *folder = folderFor(side); folder != kFolders.end(); ++folder) {
        if (QImage image = readCached(*folder, file, modified); !image.isNull())
            return image;
    }
    return {};
}

QImage smallerCachedThumbnail(const FileUrl &file, const QDateTime &modified, int side)
{
    for (const CacheFolder *folder = folderFor(side); folder != kFolders.begin();) {
        if (QImage image = readCached(*--folder, file, modified); !image.isNull())
            return image;
    }
    return {};
}

void cacheThumbnail(const FileUrl &file, const QDateTime &modified, QImage picture, int side)
{
    constexpr qint64 kSettled = 2; // seconds
    if (picture.isNull() || modified.secsTo(QDateTime::currentDateTime()) < kSettled)
        return;
    const QByteArray uri = file.absoluteString();
    const QString path = cachePath(*folderFor(side), uri);
    if (!makePrivateFolder(QFileInfo(path).path()))
        return;
    picture.setText(QStringLiteral("Thumb::URI"), QString::fromLatin1(uri));
    picture.setText(QStringLiteral("Thumb::MTime"), QString::number(modified.toSecsSinceEpoch()));
    picture.setText(QStringLiteral("Software"), QStringLiteral("Vantor"));
    // Written under another name first, so that no program reads half a picture.
    QSaveFile output(path);
    if (!output.open(QIODevice::WriteOnly))
        return;
    output.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    if (picture.save(&output, "PNG"))
        output.commit();
}
