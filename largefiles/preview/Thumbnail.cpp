#include "largefiles/preview/Thumbnail.h"

#include "largefiles/preview/ThumbnailCache.h"
#include "largefiles/preview/Thumbnailers.h"
#include "platform/base/Indestructible.h"
#include "platform/base/Log.h"
#include "platform/look/FileImages.h"

#include <QDateTime>
#include <QMimeDatabase>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>

namespace {

constexpr double kCornerRadius = 6;
constexpr QColor kEdgeColour(0, 0, 0, 40);

QSize fitted(QSize picture, QSize room)
{
    if (picture.width() <= room.width() && picture.height() <= room.height())
        return picture;
    return picture.scaled(room, Qt::KeepAspectRatio).expandedTo({1, 1});
}

QString mimeTypeOf(const FileUrl &file)
{
    const QString name = QString::fromUtf8(file.lastPathComponent());
    return QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension).name();
}

/// The desktop's programs are for what Vantor does not decode itself: they would do no better with
/// a damaged photograph.
QImage pictureByProgram(const GuardedFile &device, const FileUrl &file, int side,
                        const std::stop_token &stop)
{
    const QString type = mimeTypeOf(file);
    static const Indestructible<QStringList> decoded(
        QStringList{QStringLiteral("image/bmp"), QStringLiteral("image/gif"),
                    QStringLiteral("image/jpeg"), QStringLiteral("image/png"),
                    QStringLiteral("image/tiff"), QStringLiteral("image/vnd.microsoft.icon"),
                    QStringLiteral("image/webp"), QStringLiteral("image/x-icns")});
    if ((*decoded).contains(type))
        return {};
    const auto thumbnailer = thumbnailerFor(type);
    if (!thumbnailer)
        return {};
    ThumbnailerLimits limits;
    limits.decoder = device.decoder();
    return pictureMadeBy(*thumbnailer, {file, device.descriptor()}, side, stop, limits);
}

QImage newPicture(GuardedFile &device, const FileUrl &file, QSize pixels,
                  const std::stop_token &stop)
{
    const QImage picture = device.picture(0, pixels).image;
    if (device.hasGivenUp())
        return {};
    return picture.isNull() ? pictureByProgram(device, file, pixels.width(), stop) : picture;
}

QImage asPrint(const QImage &picture, qreal scale)
{
    QImage print(picture.size(), QImage::Format_ARGB32_Premultiplied);
    print.fill(Qt::transparent);
    const double radius =
        qMin(kCornerRadius * scale, qMin(picture.width(), picture.height()) / 8.0);
    QPainter painter(&print);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QBrush(picture));
    painter.drawRoundedRect(QRectF(picture.rect()), radius, radius);
    const double half = scale / 2;
    painter.setPen(QPen(kEdgeColour, scale));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(picture.rect()).adjusted(half, half, -half, -half), radius,
                            radius);
    return print;
}

} // namespace

QImage pictureOfFile(const FileReading &reading, const FileUrl &file, QSize pixels,
                     const std::stop_token &stop)
{
    const AccessScope scope(reading.access);
    const auto device = GuardedFile::open(reading, file, stop);
    if (!device)
        return {};
    const int side = qMin(pixels.width(), pixels.height());
    QImage picture = cachedThumbnail(file, device->modified(), side);
    if (picture.isNull()) {
        // Made in the cache's size, so that later requests can use it, unless that size is too
        // small.
        const int kept = qMax(cachedSide(side), qMax(pixels.width(), pixels.height()));
        picture = newPicture(*device, file, {kept, kept}, stop);
        if (kept == cachedSide(side))
            cacheThumbnail(file, device->modified(), picture, side);
    }
    if (picture.isNull())
        picture = smallerCachedThumbnail(file, device->modified(), side);
    if (picture.isNull())
        return {};
    return picture.scaled(fitted(picture.size(), pixels), Qt::IgnoreAspectRatio,
                          Qt::SmoothTransformation);
}

QImage iconOfFile(const FileUrl &file, PictureSize size)
{
    const int side = qMin(size.pixels().width(), size.pixels().height());
    const QString name = imageNameForGenericIcon(genericIconName(file.lastPathComponent()));
    QImage icon(side, side, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    // Not through the application's picture cache, which is the main thread's.
    QSvgRenderer drawing(QStringLiteral(":/images/%1.svg").arg(name));
    if (!drawing.isValid()) {
        qCWarning(logVantor, "ERROR!!!");
        return {};
    }
    drawing.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&icon);
    drawing.render(&painter, QRectF(icon.rect()));
    painter.end();
    icon.setDevicePixelRatio(size.scale);
    return icon;
}

QImage imageWithPreviewOfFileAtPath(const FileReading &reading, const FileUrl &file,
                                    PictureSize size, ThumbnailMode mode,
                                    const std::stop_token &stop)
{
    if (!file.isValid() || size.pixels().isEmpty())
        return {};
    const QImage picture = pictureOfFile(reading, file, size.pixels(), stop);
    if (stop.stop_requested())
        return {};
    if (picture.isNull())
        return iconOfFile(file, size);
    QImage image = mode == ThumbnailMode::Icon ? asPrint(picture, size.scale) : picture;
    image.setDevicePixelRatio(size.scale);
    return image;
}
