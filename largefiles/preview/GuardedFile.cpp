#include "largefiles/preview/GuardedFile.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"

#include <QDateTime>
#include <QMimeDatabase>

namespace {

/// Where readers look for the mark of a format, in bytes.
constexpr qint64 kHeaderWithin = 1024;

/// There are too many films and texts to start a process for each. This only compares bytes.
bool mayHoldPicture(const QByteArray &header)
{
    return header.contains("%PDF-") ||
           QMimeDatabase().mimeTypeForData(header).name().startsWith(QLatin1String("image/"));
}

} // namespace

std::unique_ptr<GuardedFile> GuardedFile::open(const FileReading &reading, const FileUrl &url,
                                               const std::stop_token &stop, ReadingLimits limits)
{
    const auto path = reading.access.anchoredPath(url);
    if (!path || path->relativePath.isEmpty())
        return nullptr;
    const AnchoredEntry entry = anchoredEntry(*path);
    const auto folder = openAnchored(reading.calls, entry.folder, Descent::Strict);
    if (!folder)
        return nullptr;
    // The status is read before the file is opened too: to open a pipe or a device may wait, or do
    // something.
    const auto status = reading.calls.status(folder->get(), entry.name.constData());
    if (!status || status->kind != FileKind::Regular)
        return nullptr;
    auto descriptor = reading.calls.openFile(folder->get(), entry.name.constData());
    if (!descriptor)
        return nullptr;
    std::unique_ptr<GuardedFile> file(
        new GuardedFile(std::move(*descriptor), reading.decoder, stop, limits));
    return file->isOpen() ? std::move(file) : nullptr;
}

GuardedFile::GuardedFile(FileDescriptor descriptor, PictureDecoder decoder, std::stop_token stop,
                         ReadingLimits limits)
    : m_decoder(std::move(decoder)),
      m_descriptor(std::move(descriptor)),
      m_stop(std::move(stop)),
      m_bytesLeft(limits.bytes),
      m_deadline(limits.time)
{
    if (m_file.open(m_descriptor.get(), QIODevice::ReadOnly | QIODevice::Unbuffered))
        QIODevice::open(QIODevice::ReadOnly);
}

QDateTime GuardedFile::modified() const
{
    return m_file.fileTime(QFileDevice::FileModificationTime);
}

DecodedPicture GuardedFile::picture(int page, QSize pixels)
{
    if (!seek(0) || !mayHoldPicture(read(kHeaderWithin)))
        return {};
    return m_decoder.picture(m_descriptor.get(), page, pixels, m_stop);
}

bool GuardedFile::seek(qint64 position)
{
    return QIODevice::seek(position) && m_file.seek(position);
}

qint64 GuardedFile::readData(char *data, qint64 largest)
{
    if (m_stop.stop_requested() || m_deadline.hasExpired() || m_bytesLeft <= 0) {
        m_hasGivenUp = true;
        return -1;
    }
    const qint64 count = m_file.read(data, qMin(largest, m_bytesLeft));
    if (count > 0)
        m_bytesLeft -= count;
    return count;
}
