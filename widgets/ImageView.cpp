#include "widgets/ImageView.h"

#include "platform/look/Images.h"

#include <QPainter>

ImageView::ImageView(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ImageView::setImageName(const QString &name)
{
    m_imageName = name;
    updateGeometry();
    update();
}

QSize ImageView::sizeHint() const
{
    return imageSize(m_imageName);
}

void ImageView::paintEvent(QPaintEvent *)
{
    QPainter(this).drawPixmap(QPointF(), imageNamed(m_imageName, devicePixelRatioF(), size()));
}
