#include "platform/SheetFrame.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <qdrawutil.h>

namespace {

constexpr int kRadius = 10;
constexpr int kEdge = 1;
constexpr int kBorderOpacity = 46;       // of 255
constexpr double kShadowStrength = 0.26; // right at the edge
constexpr int kShadowDrop = 3;           // the light comes from above
constexpr int kSlotDepth = 7;            // of the shade under the edge from which the sheet comes
constexpr double kSlotStrength = 0.16;

/// A modal dialog whose name is the panel's title.
class AccessibleSheet final : public QAccessibleWidget
{
public:
    explicit AccessibleSheet(QWidget *widget) : QAccessibleWidget(widget, QAccessible::Dialog) {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = true;
        return state;
    }

    static QAccessibleInterface *make(const QString &, QObject *object)
    {
        auto *const frame = qobject_cast<SheetFrame *>(object);
        return frame ? new AccessibleSheet(frame) : nullptr;
    }
};

/// The sheet as it is seen: sides that come straight out of the slot, and a rounded lower edge.
QPainterPath outline(const QRectF &body, double radius)
{
    QPainterPath path;
    path.addRoundedRect(body.adjusted(0, -2 * radius, 0, 0), radius, radius);
    return path;
}

/// The part of the shadow's picture that is not stretched: the fading and the bend.
constexpr int kCorner = SheetFrame::kShadow + 2 * kRadius;

/// A small shadow, drawn once and stretched to any size: fine layers, each a point wider and
/// together fading like the square of the distance.
QPixmap drawnShadow(qreal scale)
{
    const QSize size(2 * kCorner + 1, 2 * kCorner + 1);
    QPixmap picture(size * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setPen(Qt::NoPen);
    const QRectF body = QRectF(QPointF(), size)
                            .adjusted(SheetFrame::kShadow, SheetFrame::kShadow,
                                      -SheetFrame::kShadow, -SheetFrame::kShadow);
    for (int reach = SheetFrame::kShadow; reach >= 0; --reach) {
        const double nearness = 1 - static_cast<double>(reach) / SheetFrame::kShadow;
        painter.setBrush(
            QColor::fromRgbF(0, 0, 0, static_cast<float>(kShadowStrength * nearness * nearness)));
        painter.drawRoundedRect(body.adjusted(-reach, -reach, reach, reach), kRadius + reach,
                                kRadius + reach);
    }
    return picture;
}

QPixmap shadowPicture(qreal scale)
{
    const QString key = QStringLiteral("vantor/sheet shadow@%1").arg(scale);
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
        picture = drawnShadow(scale);
        QPixmapCache::insert(key, picture);
    }
    return picture;
}

} // namespace

SheetFrame::SheetFrame(QWidget *parent) : QWidget(parent)
{
    [[maybe_unused]] static const bool isKnown =
        (QAccessible::installFactory(&AccessibleSheet::make), true);
}

QSize SheetFrame::sizeAround(QSize panel)
{
    return panel + QSize(2 * (kShadow + kEdge), kShadow + kRadius);
}

QSize SheetFrame::sizeInside(QSize frame)
{
    return frame - sizeAround(QSize(0, 0));
}

QRect SheetFrame::panelRect() const
{
    return {QPoint(kShadow + kEdge, 0), sizeInside(size())};
}

QRectF SheetFrame::body() const
{
    return QRectF(rect()).adjusted(kShadow, 0, -kShadow, -kShadow);
}

void SheetFrame::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintShadow(painter, body());

    const QColor border = palette().color(QPalette::WindowText);
    const QRectF line = body().adjusted(0.5, 0, -0.5, -0.5);
    painter.setPen(QColor(border.red(), border.green(), border.blue(), kBorderOpacity));
    painter.setBrush(palette().brush(QPalette::Window));
    painter.drawPath(outline(line, kRadius));

    QLinearGradient slot(0, 0, 0, kSlotDepth);
    slot.setColorAt(0, QColor::fromRgbF(0, 0, 0, static_cast<float>(kSlotStrength)));
    slot.setColorAt(1, Qt::transparent);
    painter.fillRect(QRectF(line.left(), 0, line.width(), kSlotDepth), slot);
}

void SheetFrame::paintShadow(QPainter &painter, const QRectF &body) const
{
    const QPixmap shadow = shadowPicture(devicePixelRatioF());
    const QRect target =
        body.translated(0, kShadowDrop).adjusted(-kShadow, -2 * kCorner, kShadow, kShadow).toRect();
    const QMargins margins(kCorner, kCorner, kCorner, kCorner);
    qDrawBorderPixmap(&painter, target, margins, shadow, shadow.rect(),
                      margins * shadow.devicePixelRatio());
}
