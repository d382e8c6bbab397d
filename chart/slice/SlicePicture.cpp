#include "chart/slice/SlicePicture.h"

#include "platform/look/OwnThreadPainting.h"

#include <QPainter>

namespace {

constexpr int kBitsOfAByte = 8;

} // namespace

void SlicePicture::paint(QPainter &painter, const SliceLook &look, const QRectF &extent,
                         const Draw &draw)
{
    const QTransform device = painter.deviceTransform();
    const QRect area = device.mapRect(extent).toAlignedRect();
    const Key key{look, device * QTransform::fromTranslate(-area.x(), -area.y()), area.size()};
    if (!(key == m_key)) {
        forget();
        m_key = key;
        drawInto(painter, draw);
        return;
    }
    if (m_picture.isNull())
        makePicture(painter, draw);
    copyToPixels(painter, device.inverted().map(QPointF(area.topLeft())), m_picture);
}

void SlicePicture::drawInto(QPainter &painter, const Draw &draw)
{
    ++m_drawings;
    painter.save();
    draw(painter);
    painter.restore();
}

void SlicePicture::makePicture(const QPainter &like, const Draw &draw)
{
    m_picture = QPixmap(m_key.size);
    m_picture.fill(Qt::transparent);
    QPainter painter(&m_picture);
    painter.setRenderHints(like.renderHints());
    painter.setTransform(m_key.toPicture);
    drawInto(painter, draw);
}

void SlicePicture::forget()
{
    m_key = {};
    m_picture = {};
}

qsizetype SlicePicture::bytes() const
{
    return qsizetype{m_picture.width()} * m_picture.height() * m_picture.depth() / kBitsOfAByte;
}
