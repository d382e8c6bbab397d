#include "largefiles/ThumbnailCache.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
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

/// Some write the time with a fraction; what counts are its whole seconds.
bool isOfTime(const QString &text, const QDateTime &modified)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    const double wanted = std::floor(double(modified.toMSecsSinceEpoch()) / 1000.0);
    return isNumber && std::floor(seconds) == wanted;
}

QImage readCached(const QString &path, const QString &uri, const QDateTime &modified)
{
    const QFileInfo info(path);
    if (!info.isFile() || info.size() > kLargestFile)
        return {};
    // The reader's own text() cuts keys at their first colon.
    const QImage image = QImageReader(path, "png").read();
    const bool isValid = image.text(QStringLiteral("Thumb::URI")) == uri &&
                         isOfTime(image.text(QStringLiteral("Thumb::MTime")), modified);
    return isValid ? image : QImage();
}

} // namespace

QImage cachedThumbnail(const FileUrl &file, const QDateTime &modified, int side)
{
    const QByteArray uri = file.absoluteString();
    const QString name = QString::fromLatin1(
        QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex() + ".png");
    const QDir caches(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    const auto read = [&](const CacheFolder &folder) {
        const QString below =
            QStringLiteral("thumbnails/%1/%2").arg(QLatin1String(folder.name), name);
        return readCached(caches.filePath(below), QString::fromLatin1(uri), modified);
    };
    const auto fits = [side](const CacheFolder &folder) { return folder.side >= side; };
    const auto first = std::find_if(kFolders.begin(), kFolders.end(), fits);
    for (auto folder = first; folder != kFolders.end(); ++folder) {
        if (const QImage image = read(*folder); !image.isNull())
            return image;
    }
    for (auto folder = first; folder != kFolders.begin();) {
        if (const QImage image = read(*--folder); !image.isNull())
            return image;
    }
    return {};
}
