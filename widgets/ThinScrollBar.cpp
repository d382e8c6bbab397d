#include "widgets/ThinScrollBar.h"

#include <QPainter>
#include <QStyleOptionSlider>

namespace {

constexpr int kThickness = 12;
constexpr double kHandleThickness = 6;
constexpr QColor kHandleColour(0, 0, 0, 46);
constexpr QColor kHeldColour(0, 0, 0, 92);

} // namespace

ThinScrollBar::ThinScrollBar(Qt::Orientation orientation, QWidget *parent)
    : QScrollBar(orientation, parent)
{
    setAttribute(Qt::WA_Hover);
    setContextMenuPolicy(
        Qt::PreventContextMenu); // the toolkit's menu runs an event loop of its own
}

QSize ThinScrollBar::sizeHint() const
{
    const QSize own = QScrollBar::sizeHint();
    return orientation() == Qt::Vertical ? QSize(kThickness, own.height())
                                         : QSize(own.width(), kThickness);
}

/// The style's slider, in the middle of the bar's thickness.
QRectF ThinScrollBar::handle() const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF slider =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    const double spare = (kThickness - kHandleThickness) / 2;
    return orientation() == Qt::Vertical
               ? QRectF(spare, slider.y() + 1, kHandleThickness, slider.height() - 2)
               : QRectF(slider.x() + 1, spare, slider.width() - 2, kHandleThickness);
}

void ThinScrollBar::paintEvent(QPaintEvent *)
{
    if (minimum() == maximum())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isSliderDown() || underMouse() ? kHeldColour : kHandleColour);
    painter.drawRoundedRect(handle(), kHandleThickness / 2, kHandleThickness / 2);
}
