#include "largefiles/sheet/SelectionPicture.h"

#include "largefiles/preview/Thumbnail.h"
#include "largefiles/sheet/FileIconNames.h"
#include "platform/look/Images.h"

#include <QLabel>

SelectionPicture::SelectionPicture(FileReading reading, FileIconNames &icons, FileUrl home)
    : m_reading(std::move(reading)), m_icons(icons), m_home(std::move(home))
{
}

void SelectionPicture::setLabels(QLabel &picture, QLabel &place)
{
    m_label = &picture;
    m_placeLabel = &place;
}

/// The folder that a file lies in, for people: from the home folder on.
QString SelectionPicture::placeOf(const FileUrl &file) const
{
    QByteArray path = file.path();
    path.truncate(path.lastIndexOf('/'));
    if (path.startsWith(m_home.path() + '/'))
        path.remove(0, m_home.path().size() + 1);
    return QString::fromUtf8(path);
}

void SelectionPicture::showNothing(const QString &hint)
{
    m_thumbnails.stop();
    m_label->clear(); // an empty text would leave the picture
    m_placeLabel->clear();
    setHint(hint);
    Q_EMIT shown();
}

void SelectionPicture::setHint(const QString &hint)
{
    m_label->setAlignment(Qt::AlignCenter);
    m_label->setAccessibleName({}); // its text speaks for itself
    m_label->setText(hint);
}

void SelectionPicture::showFile(const File &file)
{
    m_thumbnails.stop();
    const FileUrl url = file.fileURL();
    const PictureSize size{m_label->size(), m_label->devicePixelRatioF()};
    m_label->setAccessibleName(tr("Picture of %1").arg(file.name()));
    m_label->setAlignment(Qt::AlignHCenter | Qt::AlignBottom); // right above the name of its folder
    m_label->setPixmap(
        imageNamed(m_icons.imageName(url.lastPathComponent()), size.scale, size.points));
    m_placeLabel->setText(m_placeLabel->fontMetrics().elidedText(
        tr("In %1").arg(placeOf(url)), Qt::ElideMiddle, size.points.width()));
    m_thumbnails.run([this, reading = m_reading, url, size](const std::stop_token &stop) {
        const QImage image =
            imageWithPreviewOfFileAtPath(reading, url, size, ThumbnailMode::Icon, stop);
        return [this, image] {
            m_label->setPixmap(QPixmap::fromImage(image));
            Q_EMIT shown();
        };
    });
}
