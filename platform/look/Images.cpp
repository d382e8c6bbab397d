#include "platform/look/Images.h"

#include <QFile>
#include <QHash>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace {

QString resourceOf(const QString &name)
{
    return QStringLiteral(":/images/%1.svg").arg(name);
}

QPixmap drawn(const QString &name, qreal scale, QSize size)
{
    QSvgRenderer drawing(resourceOf(name));
    QPixmap picture(size * scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    QRectF target(QPointF(),
                  QSizeF(drawing.defaultSize()).scaled(picture.size(), Qt::KeepAspectRatio));
    target.moveCenter(QRectF(picture.rect()).center());
    drawing.render(&painter, target);
    painter.end();
    picture.setDevicePixelRatio(scale);
    return picture;
}

} // namespace

bool hasImageNamed(const QString &name)
{
    return !name.isEmpty() && QFile::exists(resourceOf(name));
}

QSize imageSize(const QString &name)
{
    // Every painting asks for the size, and reading a drawing takes longer than showing it.
    static QHash<QString, QSize> sizes;
    const auto known = sizes.constFind(name);
    if (known != sizes.constEnd())
        return *known;
    const QSize size = hasImageNamed(name) ? QSvgRenderer(resourceOf(name)).defaultSize() : QSize();
    sizes.insert(name, size);
    return size;
}

QPixmap imageNamed(const QString &name, qreal scale, QSize size)
{
    if (!hasImageNamed(name))
        return {};
    const QSize points = size.isEmpty() ? imageSize(name) : size;
    const QString key = QStringLiteral("vantor/%1/%2x%3@%4")
                            .arg(name)
                            .arg(points.width())
                            .arg(points.height())
                            .arg(scale);
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
        picture = drawn(name, scale, points);
        QPixmapCache::insert(key, picture);
    }
    return picture;
}
