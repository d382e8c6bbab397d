#pragma once

#include "platform/files/FileUrl.h"
#include "slices/record/Confirmation.h"

#include <QObject>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

/// VNTFileSizeChangedNotification: says that some slice's size was set. Lives on the main thread;
/// post() may be called from any thread and reaches the observers there, later.
class FileSizeChangedNotification final : public QObject
{
    Q_OBJECT

public:
    void post();

Q_SIGNALS:
    void posted();
};

/// One slice: a kind of content, the locations that it stands for, its icon and what is known of
/// its size. Shared between the page that makes it and the chart that shows it. Any thread may ask
/// for the size and set it; everything else belongs to the main thread.
class Info final
{
public:
    /// Measures one location in bytes, without what is kept of all locations. Called on the thread
    /// that asks for the size text. Nothing when it was stopped: a part of the size is no size.
    using Measure =
        std::function<std::optional<qint64>(const FileUrl &location, const FileUrls &kept)>;

    /// What a record uses to find its size and to report it. A record without locations needs none.
    struct Services
    {
        Measure measure;
        std::shared_ptr<FileSizeChangedNotification> notification;
    };

    static std::shared_ptr<Info> infoWithName(const QString &name, std::optional<FileUrls> fileURLs,
                                              Services services = {});

    /// `image` names a picture of the resources; the default is the slice's name. `fileSize` is a
    /// preset size text. Nothing is measured here. Without `fileURLs` the user chooses them later.
    Info(const QString &name, std::optional<FileUrls> fileURLs, std::optional<QString> image,
         std::optional<QString> fileSize, Services services = {});

    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    QString image() const { return m_image; }
    void setImage(const QString &image) { m_image = image; }

    std::optional<FileUrls> fileURLs() const;
    /// Measures the new locations, which may take long, and sets the size, unless still newer
    /// locations were set meanwhile. Does not change the size text: the caller does.
    void setFileURLs(const FileUrls &fileURLs);
    /// The same for locations whose size was just measured elsewhere; returns at once.
    void setFileURLs(const FileUrls &fileURLs, qint64 measuredBytes);

    /// When the user chose the locations, if they are the user's own choice, and what stood there
    /// then, as far as it is known: they were meant as they were.
    std::optional<Confirmation> choice() const;
    void setChoice(const Confirmation &choice);

    /// Folders inside the locations that stay, with all that they hold, because a program uses
    /// them.
    FileUrls kept() const;
    /// Sets the locations together with what is kept inside them, and forgets the size text: the
    /// next request for it measures.
    void setLocations(const FileUrls &fileURLs, const FileUrls &kept);

    /// Bytes below all locations; 0 until measured.
    qint64 fileSize() const;
    /// Posts the notification, also when the size stays the same.
    void setFileSize(qint64 bytes);

    /// The text shown for the size. Measures on first use, which may take long: not for the main
    /// thread. "Empty" for no bytes; nothing while there are no locations and no preset text, or
    /// when the measuring was stopped.
    std::optional<QString> fileSizeString();
    void setFileSizeString(std::optional<QString> text);
    /// Whether there are locations and their size text is known.
    bool isMeasured() const;

    bool isOn() const { return m_isOn; }
    void setIsOn(bool isOn) { m_isOn = isOn; }

private:
    struct Locations
    {
        FileUrls urls;
        FileUrls kept;

        friend bool operator==(const Locations &, const Locations &) = default;
    };

    std::optional<qint64> measured(const Locations &locations) const;
    void measureOnce();
    std::optional<Locations> locationsToMeasure() const;
    bool storeFirstMeasure(const Locations &locations, qint64 bytes);
    void postSizeChanged() const;

    QString m_name;
    QString m_image;
    bool m_isOn = true;
    Services m_services;

    std::mutex m_measuring;     ///< held while the locations are walked for the size text
    mutable std::mutex m_mutex; ///< guards what the measuring threads share with the main thread
    std::optional<Locations> m_locations;
    std::optional<Confirmation> m_choice;
    std::optional<QString> m_fileSizeString;
    qint64 m_fileSize = 0;
};

/// A record prints as its slice's name.
QDebug operator<<(QDebug debug, const Info &info);
