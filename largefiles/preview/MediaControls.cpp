#include "largefiles/preview/MediaControls.h"

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kButtonSide = 56;
constexpr double kSignSide = 20;
constexpr QColor kButtonColour(30, 34, 40, 150);
constexpr QColor kHeldColour(30, 34, 40, 205);
constexpr double kLineThickness = 3;
constexpr double kHandleSide = 11;
constexpr QColor kLineColour(0, 0, 0, 36);
constexpr QColor kPlayedColour(0, 0, 0, 120);
constexpr QColor kHandleColour(77, 77, 77);

void paintPlaySign(QPainter &painter, QPointF centre)
{
    // The sign's centre of gravity is in the middle, not the centre of its box.
    const QPointF left = centre - QPointF(kSignSide / 3, 0);
    painter.drawPolygon(
        QPolygonF({left - QPointF(0, kSignSide / 2), left + QPointF(0, kSignSide / 2),
                   left + QPointF(kSignSide * 0.9, 0)}));
}

void paintPauseSign(QPainter &painter, QPointF centre)
{
    constexpr double kBar = kSignSide * 0.3;
    for (const double x : {-kSignSide * 0.45, kSignSide * 0.15}) {
        painter.drawRoundedRect(QRectF(centre.x() + x, centre.y() - kSignSide / 2, kBar, kSignSide),
                                1, 1);
    }
}

} // namespace

PlayButton::PlayButton(QWidget *parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    setIsPlaying(false);
}

void PlayButton::setIsPlaying(bool isPlaying)
{
    m_isPlaying = isPlaying;
    setAccessibleName(isPlaying ? tr("Pause") : tr("Play"));
    setToolTip(isPlaying ? tr("Pause (P)") : tr("Play (P)"));
    setAccessibleDescription(tr("Press P"));
    update();
}

void PlayButton::setIsFaded(bool isFaded)
{
    m_isFaded = isFaded;
    update();
}

QSize PlayButton::sizeHint() const
{
    return {kButtonSide, kButtonSide};
}

void PlayButton::paintEvent(QPaintEvent *)
{
    if (m_isFaded && !isDown())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isDown() || underMouse() ? kHeldColour : kButtonColour);
    painter.drawEllipse(rect());
    painter.setBrush(Qt::white);
    const QPointF centre = QRectF(rect()).center();
    m_isPlaying ? paintPauseSign(painter, centre) : paintPlaySign(painter, centre);
}

PositionSlider::PositionSlider(QWidget *parent) : QSlider(Qt::Horizontal, parent)
{
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(tr("Position"));
}

void PositionSlider::mousePressEvent(QMouseEvent *event)
{
    setSliderDown(true);
    moveTo(event->position().x());
}

void PositionSlider::mouseMoveEvent(QMouseEvent *event)
{
    moveTo(event->position().x());
}

void PositionSlider::mouseReleaseEvent(QMouseEvent *)
{
    setSliderDown(false);
}

void PositionSlider::moveTo(double x)
{
    const double part = (x - kHandleSide / 2) / qMax(1.0, width() - kHandleSide);
    setSliderPosition(minimum() + int(qBound(0.0, part, 1.0) * (maximum() - minimum())));
}

void PositionSlider::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double part = maximum() > minimum()
                            ? double(sliderPosition() - minimum()) / (double(maximum()) - minimum())
                            : 0;
    const double x = kHandleSide / 2 + part * (width() - kHandleSide);
    const double middle = height() / 2.0;
    const auto line = [&](double from, double to) {
        return QRectF(from, middle - kLineThickness / 2, to - from, kLineThickness);
    };
    painter.setBrush(kLineColour);
    painter.drawRoundedRect(line(0, width()), kLineThickness / 2, kLineThickness / 2);
    painter.setBrush(kPlayedColour);
    painter.drawRoundedRect(line(0, x), kLineThickness / 2, kLineThickness / 2);
    painter.setBrush(kHandleColour);
    painter.drawEllipse(QPointF(x, middle), kHandleSide / 2, kHandleSide / 2);
}
