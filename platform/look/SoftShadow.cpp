#include "platform/look/SoftShadow.h"

#include <QPixmapCache>
#include <qdrawutil.h>

namespace {

/// The size of the part of the picture that is not stretched: the fading edge and the rounded
/// corner.
int cornerOf(const SoftShadow &shadow)
{
    return shadow.reach + 2 * shadow.radius;
}

/// Draws thin layers, each a point wider than the one before; together they fade with the square of
/// the distance.
QPixmap drawnShadow(const SoftShadow &shadow, qreal scale)
{
    const QSize size(2 * cornerOf(shadow) + 1, 2 * cornerOf(shadow) + 1);
    QPixmap picture(size * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setPen(Qt::NoPen);
    const QRectF body =
        QRectF(QPointF(), size) - QMarginsF(shadow.reach, shadow.reach, shadow.reach, shadow.reach);
    for (int reach = shadow.reach; reach >= 0; --reach) {
        const double nearness = 1 - static_cast<double>(reach) / shadow.reach;
        painter.setBrush(
            QColor::fromRgbF(0, 0, 0, static_cast<float>(shadow.strength * nearness * nearness)));
        painter.drawRoundedRect(body.adjusted(-reach, -reach, reach, reach), shadow.radius + reach,
                                shadow.radius + reach);
    }
    return picture;
}

QPixmap shadowPicture(const SoftShadow &shadow, qreal scale)
{
    const QString key = QStringLiteral("vantor/shadow %1 %2 %3@%4")
                            .arg(shadow.reach)
                            .arg(shadow.radius)
                            .arg(shadow.strength)
                            .arg(scale);
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
        picture = drawnShadow(shadow, scale);
        QPixmapCache::insert(key, picture);
    }
    return picture;
}

} // namespace

void paintSoftShadow(QPainter &painter, const QRect &body, const SoftShadow &shadow)
{
    const QPixmap picture = shadowPicture(shadow, painter.device()->devicePixelRatioF());
    const QMargins reach(shadow.reach, shadow.reach, shadow.reach, shadow.reach);
    const int corner = cornerOf(shadow);
    const QMargins margins(corner, corner, corner, corner);
    qDrawBorderPixmap(&painter, body + reach, margins, picture, picture.rect(),
                      margins * picture.devicePixelRatio());
}
