#include "slices/record/Info.h"

#include "platform/base/ByteCount.h"
#include "slices/record/SizeText.h"

#include <QDebug>

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
      m_fileSizeString(std::move(fileSize))
{
    if (fileURLs)
        m_locations = Locations{*std::move(fileURLs), {}};
}

std::optional<FileUrls> Info::fileURLs() const
{
    const std::scoped_lock lock(m_mutex);
    return m_locations ? std::optional(m_locations->urls) : std::nullopt;
}

void Info::setFileURLs(const FileUrls &fileURLs)
{
    const Locations locations{fileURLs, {}};
    {
        const std::scoped_lock lock(m_mutex);
        m_locations = locations;
    }
    const std::optional<qint64> bytes = measured(locations);
    {
        const std::scoped_lock lock(m_mutex);
        if (!bytes || m_locations != locations)
            return; // the call that set newer locations measures those
        m_fileSize = *bytes;
    }
    postSizeChanged();
}

void Info::setFileURLs(const FileUrls &fileURLs, qint64 measuredBytes)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_locations = Locations{fileURLs, {}};
        m_fileSize = measuredBytes;
    }
    postSizeChanged();
}

std::optional<Confirmation> Info::choice() const
{
    const std::scoped_lock lock(m_mutex);
    return m_choice;
}

void Info::setChoice(const Confirmation &choice)
{
    const std::scoped_lock lock(m_mutex);
    m_choice = choice;
}

FileUrls Info::kept() const
{
    const std::scoped_lock lock(m_mutex);
    return m_locations ? m_locations->kept : FileUrls();
}

void Info::setLocations(const FileUrls &fileURLs, const FileUrls &kept)
{
    const std::scoped_lock lock(m_mutex);
    m_locations = Locations{fileURLs, kept};
    m_fileSizeString.reset();
    m_fileSize = 0;
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
    if (locationsToMeasure())
        measureOnce();
    const std::scoped_lock lock(m_mutex);
    return m_fileSizeString;
}

void Info::measureOnce()
{
    // A second reader waits for the first one's walk instead of walking again beside it, so that a
    // cleaning that asks begins only when no measure runs any more.
    const std::scoped_lock measuring(m_measuring);
    while (const std::optional<Locations> locations = locationsToMeasure()) {
        const std::optional<qint64> bytes = measured(*locations);
        if (!bytes)
            return;
        if (storeFirstMeasure(*locations, *bytes))
            postSizeChanged();
    }
}

std::optional<Info::Locations> Info::locationsToMeasure() const
{
    const std::scoped_lock lock(m_mutex);
    return m_fileSizeString ? std::nullopt : m_locations;
}

bool Info::storeFirstMeasure(const Locations &locations, qint64 bytes)
{
    const std::scoped_lock lock(m_mutex);
    // A text that was set, or locations that were changed meanwhile, are newer than this measure.
    if (m_fileSizeString || m_locations != locations)
        return false;
    m_fileSizeString = bytes == 0 ? QString::fromUtf16(kEmptySize) : stringFromByteCount(bytes);
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
    return m_locations && m_fileSizeString;
}

void Info::setFileSizeString(std::optional<QString> text)
{
    const std::scoped_lock lock(m_mutex);
    m_fileSizeString = std::move(text);
}

std::optional<qint64> Info::measured(const Locations &locations) const
{
    qint64 bytes = 0;
    if (!m_services.measure)
        return bytes;
    for (const FileUrl &url : locations.urls) {
        const std::optional<qint64> size = m_services.measure(url, locations.kept);
        if (!size)
            return std::nullopt;
        bytes = sumOfByteCounts(bytes, *size);
    }
    return bytes;
}

QDebug operator<<(QDebug debug, const Info &info)
{
    const QDebugStateSaver saver(debug);
    return debug.noquote() << info.name();
}
