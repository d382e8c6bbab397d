#include "largefiles/preview/ThumbnailCache.h"
#include "tests/soak/fuzz/Edits.h"
#include "tests/soak/fuzz/FuzzTargets.h"
#include "tests/support/run/Must.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QtEndian>
#include <zlib.h>

namespace {

constexpr int kSide = 128;
constexpr int kModes = 3;
constexpr qint64 kModified = 1'600'000'000;

enum class Mode { Bytes, Damaged, SealedAfterDamage };

FileUrl fileNamed(const QByteArray &name)
{
    return FileUrl::fromPath("/home/anna/" + name, FileUrlKind::File);
}

QString cachePath(const FileUrl &file)
{
    const QByteArray sum =
        QCryptographicHash::hash(file.absoluteString(), QCryptographicHash::Md5).toHex();
    const QDir caches(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    caches.mkpath(QStringLiteral("thumbnails/normal"));
    return caches.filePath(
        QStringLiteral("thumbnails/normal/%1.png").arg(QString::fromLatin1(sum)));
}

/// A picture of the film, as Vantor itself would keep it.
const QByteArray &goodPicture()
{
    static const QByteArray good = [] {
        QImage image(8, 4, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        cacheThumbnail(fileNamed("film"), QDateTime::fromSecsSinceEpoch(kModified), image, kSide);
        QFile kept(cachePath(fileNamed("film")));
        must(kept.open(QIODevice::ReadOnly), "a picture in the cache");
        return kept.readAll();
    }();
    return good;
}

/// With the checksums that the chunks ought to have, so that a decoder does not stop there.
QByteArray sealed(QByteArray png)
{
    constexpr qsizetype kSignature = 8;
    constexpr qsizetype kField = 4;
    for (qsizetype at = kSignature; at + 3 * kField <= png.size();) {
        const qsizetype length = qFromBigEndian<quint32>(png.constData() + at);
        const qsizetype sum = at + 2 * kField + length;
        if (sum + kField > png.size())
            break;
        const auto *const chunk = reinterpret_cast<const Bytef *>(png.constData() + at + kField);
        const uLong crc = crc32(0, chunk, static_cast<uInt>(kField + length));
        qToBigEndian(static_cast<quint32>(crc), png.data() + sum);
        at = sum + kField;
    }
    return png;
}

QByteArray pictureFor(const ModedInput &input)
{
    switch (Mode(input.mode)) {
    case Mode::Bytes:
        return input.rest;
    case Mode::Damaged:
        return edited(goodPicture(), input.rest);
    case Mode::SealedAfterDamage:
        return sealed(edited(goodPicture(), input.rest));
    }
    Q_UNREACHABLE();
}

void keep(const FileUrl &file, const QByteArray &bytes)
{
    QFile kept(cachePath(file));
    must(kept.open(QIODevice::WriteOnly | QIODevice::Truncate) && kept.write(bytes) == bytes.size(),
         "writing a picture");
}

bool isShown(const FileUrl &file, qint64 modified)
{
    return !cachedThumbnail(file, QDateTime::fromSecsSinceEpoch(modified), kSide).isNull();
}

} // namespace

/// A picture in the cache is of one file as it was at one time: it is never shown for a second
/// file, nor for another time.
QByteArray findingInCachedThumbnail(const QByteArray &input)
{
    const QByteArray picture = pictureFor(ModedInput(input, kModes));
    const FileUrl film = fileNamed("film");
    const FileUrl other = fileNamed("fiml");
    keep(film, picture);
    keep(other, picture);
    const bool isOfFilm = isShown(film, kModified);
    if (isOfFilm && isShown(other, kModified))
        return "one picture of two files";
    if (isOfFilm && isShown(film, kModified + 1))
        return "one picture of two times";
    if (!isOfFilm && picture == goodPicture())
        return "the picture is not found";
    return {};
}
