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
      m_image(image.value_or(name)),
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
    setFileSize(measured(fileURLs));
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
    if (m_services.notification)
        m_services.notification->post();
}

std::optional<QString> Info::fileSizeString()
{
    // A second reader waits for the first one's walk instead of walking again beside it, so that a
    // cleaning that asks begins only when nobody measures any more.
    const std::scoped_lock measuring(m_measuring);
    FileUrls places;
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_fileURLs || m_fileSizeString)
            return m_fileSizeString;
        places = *m_fileURLs;
    }
    const qint64 bytes = measured(places);
    const QString text = bytes == 0 ? kEmptyText : stringFromByteCount(bytes);
    setFileSizeString(text);
    setFileSize(bytes);
    return text;
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
    for (const FileUrl &url : fileURLs)
        bytes += m_services.measure ? m_services.measure(url) : 0;
    return bytes;
}

QDebug operator<<(QDebug debug, const Info &info)
{
    const QDebugStateSaver saver(debug);
    return debug.noquote() << info.name();
}
