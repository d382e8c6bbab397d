#include "platform/sheet/SheetFrame.h"

#include "platform/look/SoftShadow.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QPainterPath>

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

void SheetFrame::paintShadow(QPainter &painter, const QRectF &body)
{
    // The sheet comes out of a slot: its shadow has no upper end.
    constexpr int kBeyondTheSlot = kShadow + 4 * kRadius;
    paintSoftShadow(painter,
                    body.translated(0, kShadowDrop).adjusted(0, -kBeyondTheSlot, 0, 0).toRect(),
                    {kShadow, kRadius, kShadowStrength});
}
