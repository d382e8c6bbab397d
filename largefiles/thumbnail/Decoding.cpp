#include "largefiles/thumbnail/Decoding.h"

#include "largefiles/thumbnail/PdfPages.h"

#include <QImageReader>

namespace {

constexpr qint64 kMostPixels = 200'000'000;

/// Drawings that are text are not decodable: such a file may name other files to read.
bool isDecodable(const QByteArray &format)
{
    static const QList<QByteArray> formats{"bmp", "gif", "icns", "ico",  "jpeg",
                                           "jpg", "png", "tif",  "tiff", "webp"};
    return formats.contains(format);
}

QSize fitted(QSize picture, QSize room)
{
    if (picture.width() <= room.width() && picture.height() <= room.height())
        return picture;
    return picture.scaled(room, Qt::KeepAspectRatio).expandedTo({1, 1});
}

QImage decodedImage(QIODevice &device, QSize pixels)
{
    QImageReader reader(&device);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    if (!isDecodable(reader.format()))
        return {};
    const QSize size = reader.size();
    if (size.isEmpty() || qint64(size.width()) * size.height() > kMostPixels)
        return {};
    const bool isTurned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    reader.setScaledSize(fitted(size, isTurned ? pixels.transposed() : pixels));
    return reader.read();
}

} // namespace

DecodedPicture decoded(QIODevice &device, int page, QSize pixels)
{
    PdfPage document = pdfPage(device, page, pixels);
    if (document.image.isNull() && device.seek(0))
        document.image = decodedImage(device, pixels);
    return {document.image, document.pageCount};
}
