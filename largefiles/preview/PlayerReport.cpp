#include "largefiles/preview/PlayerReport.h"

#include <QIODevice>

namespace {

/// Both processes run on one machine, so its own byte order is enough.
struct Header
{
    qint64 position = 0;
    qint64 duration = 0;
    qint32 width = 0; ///< of the frame that follows; 0 for none
    qint32 height = 0;
    qint32 kind = 0;
    qint32 spare = 0; ///< so that no byte is undefined
};

bool isSensible(const Header &header)
{
    const bool hasFrame = header.kind == qint32(PlayerReport::Kind::Frame);
    const qint32 least = hasFrame ? 1 : 0;
    const qint32 most = hasFrame ? kLargestFrameSide : 0;
    return header.kind >= 0 && header.kind <= qint32(PlayerReport::Kind::Failed) &&
           header.position >= 0 && header.duration >= 0 && header.width >= least &&
           header.width <= most && header.height >= least && header.height <= most;
}

} // namespace

bool writeReport(QIODevice &device, const PlayerReport &report)
{
    const QImage frame = report.frame.convertToFormat(QImage::Format_RGB32);
    const Header header{report.position, report.duration,     frame.width(),
                        frame.height(),  qint32(report.kind), 0};
    QByteArray bytes(reinterpret_cast<const char *>(&header), sizeof header);
    bytes.append(reinterpret_cast<const char *>(frame.constBits()), frame.sizeInBytes());
    return device.write(bytes) == bytes.size();
}

ReadReport readReport(QIODevice &device)
{
    Header header;
    if (device.peek(reinterpret_cast<char *>(&header), sizeof header) != qint64(sizeof header))
        return {};
    if (!isSensible(header))
        return {ReadReport::State::Broken, {}};
    const qint64 pixels = qint64(header.width) * header.height * 4;
    if (device.bytesAvailable() < qint64(sizeof header) + pixels)
        return {};
    device.skip(sizeof header);
    PlayerReport report{PlayerReport::Kind(header.kind), header.position, header.duration, {}};
    if (pixels > 0) {
        report.frame = QImage(header.width, header.height, QImage::Format_RGB32);
        if (report.frame.isNull() ||
            device.read(reinterpret_cast<char *>(report.frame.bits()), pixels) != pixels)
            return {ReadReport::State::Broken, {}};
    }
    return {ReadReport::State::Whole, report};
}
