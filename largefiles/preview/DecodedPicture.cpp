#include "largefiles/preview/DecodedPicture.h"

#include <QDataStream>

namespace {

constexpr quint32 kMark = 0x56545031;
constexpr QImage::Format kFormat = QImage::Format_ARGB32_Premultiplied;

int lineLength(int width)
{
    return width * 4;
}

} // namespace

bool writePicture(QIODevice &device, const DecodedPicture &picture)
{
    const QImage image = picture.image.convertToFormat(kFormat);
    QDataStream stream(&device);
    stream << kMark << qint32(picture.pageCount) << image.size();
    for (int line = 0; line < image.height(); ++line) {
        const int length = lineLength(image.width());
        if (stream.writeRawData(reinterpret_cast<const char *>(image.constScanLine(line)),
                                length) != length)
            return false;
    }
    return stream.status() == QDataStream::Ok;
}

DecodedPicture readPicture(QIODevice &device, QSize largest)
{
    quint32 mark = 0;
    qint32 pageCount = 0;
    QSize size;
    QDataStream stream(&device);
    stream >> mark >> pageCount >> size;
    if (stream.status() != QDataStream::Ok || mark != kMark || pageCount < 0)
        return {};
    if (size.isEmpty())
        return {{}, pageCount};
    if (size.width() > largest.width() || size.height() > largest.height())
        return {};
    QImage image(size, kFormat);
    for (int line = 0; line < image.height(); ++line) {
        const int length = lineLength(image.width());
        if (stream.readRawData(reinterpret_cast<char *>(image.scanLine(line)), length) != length)
            return {};
    }
    return {image, pageCount};
}
