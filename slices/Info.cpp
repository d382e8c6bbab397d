#include "slices/Info.h"

#include "platform/ByteCount.h"

#include <QDebug>

namespace {

constexpr QLatin1String kEmptyText("Empty");

} // namespace

void FileSizeChangedNotification::post()
{
    QMetaObject::invokeMethod(this, &FileSizeChangedNotification::posted, Qt::QueuedConnection);
}

std::shared_ptr<Info> Info::infoWithName(const QString &name, std::optional<FileUrls> fileURLs,
                                         Services services)
{
    return std::make_shared<Info>(name, std::move(fileURLs), std::nullopt, std::nullopt,
                                  std::move(services));
}

Info::Info(const QString &name, std::optional<FileUrls> fileURLs, std::optional<QString> image,
           std::optional<QString> fileSize, Services services)
    : m_name(name),
      m_image(std::move(image).value_or(name)),
      m_services(std::move(services)),
      m_fileURLs(std::move(fileURLs)),
      m_fileSizeString(std::move(fileSize))
{
}

std::optional<FileUrls> Info::fileURLs() const
{
    const std::scoped_lock lock(m_mutex);
    return m_fileURLs;
}

void Info::setFileURLs(const FileUrls &fileURLs)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_fileURLs = fileURLs;
    }
    const qint64 bytes = measured(fileURLs);
    {
        const std::scoped_lock lock(m_mutex);
        if (m_fileURLs != fileURLs)
            return; // whoever set newer places measures those
        m_fileSize = bytes;
    }
    postSizeChanged();
}

void Info::setFileURLs(const FileUrls &fileURLs, qint64 measuredBytes)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_fileURLs = fileURLs;
        m_fileSize = measuredBytes;
    }
    postSizeChanged();
}

qint64 Info::fileSize() const
{
    const std::scoped_lock lock(m_mutex);
    return m_fileSize;
}

void Info::setFileSize(qint64 bytes)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_fileSize = bytes;
    }
    postSizeChanged();
}

std::optional<QString> Info::fileSizeString()
{
    if (placesToMeasure())
        measureOnce();
    const std::scoped_lock lock(m_mutex);
    return m_fileSizeString;
}

void Info::measureOnce()
{
    // A second reader waits for the first one's walk instead of walking again beside it, so that a
    // cleaning that asks begins only when nobody measures any more.
    const std::scoped_lock measuring(m_measuring);
    while (const std::optional<FileUrls> places = placesToMeasure()) {
        if (storeFirstMeasure(*places, measured(*places)))
            postSizeChanged();
    }
}

std::optional<FileUrls> Info::placesToMeasure() const
{
    const std::scoped_lock lock(m_mutex);
    return m_fileSizeString ? std::nullopt : m_fileURLs;
}

bool Info::storeFirstMeasure(const FileUrls &places, qint64 bytes)
{
    const std::scoped_lock lock(m_mutex);
    // A text that was set, or places that were changed meanwhile, are newer than this measure.
    if (m_fileSizeString || m_fileURLs != places)
        return false;
    m_fileSizeString = bytes == 0 ? QString(kEmptyText) : stringFromByteCount(bytes);
    m_fileSize = bytes;
    return true;
}

void Info::postSizeChanged() const
{
    if (m_services.notification)
        m_services.notification->post();
}

bool Info::isMeasured() const
{
    const std::scoped_lock lock(m_mutex);
    return m_fileURLs && m_fileSizeString;
}

void Info::setFileSizeString(std::optional<QString> text)
{
    const std::scoped_lock lock(m_mutex);
    m_fileSizeString = std::move(text);
}

qint64 Info::measured(const FileUrls &fileURLs) const
{
    qint64 bytes = 0;
    if (!m_services.measure)
        return bytes;
    for (const FileUrl &url : fileURLs)
        bytes = sumOfByteCounts(bytes, m_services.measure(url));
    return bytes;
}

QDebug operator<<(QDebug debug, const Info &info)
{
    const QDebugStateSaver saver(debug);
    return debug.noquote() << info.name();
}
