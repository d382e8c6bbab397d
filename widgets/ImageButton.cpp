#include "widgets/ImageButton.h"

#include "platform/look/Images.h"
#include "platform/look/OwnThreadPainting.h"

#include <QPainter>

namespace {

constexpr double kFocusWidth = 2;
constexpr QColor kFocusColor(46, 126, 227, 160);

} // namespace

ImageButton::ImageButton(QWidget *parent) : QAbstractButton(parent)
{
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
}

void ImageButton::setImageName(const QString &name)
{
    m_imageName = name;
    updateGeometry();
    update();
}

void ImageButton::setAlternateImageName(const QString &name)
{
    m_alternateImageName = name;
    update();
}

QSize ImageButton::sizeHint() const
{
    return imageSize(m_imageName);
}

void ImageButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const bool isAlternate = isDown() && !m_alternateImageName.isEmpty();
    const QString name = isAlternate ? m_alternateImageName : m_imageName;
    painter.drawPixmap(QPointF(), imageNamed(name, devicePixelRatioF(), size()));
    if (!hasFocus())
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(rowByRowBrush(kFocusColor), kFocusWidth));
    const double inset = kFocusWidth / 2;
    painter.drawEllipse(QRectF(rect()).adjusted(inset, inset, -inset, -inset));
}
