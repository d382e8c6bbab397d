#include "chart/PieView.h"

#include "chart/slice/SlicePainting.h"
#include "platform/base/Log.h"
#include "platform/look/OwnThreadPainting.h"

#include <QPaintEvent>
#include <QPainter>
#include <utility>

PieView::PieView(QWidget *parent) : BackgroundView(parent)
{
    setBackgroundColor(Qt::transparent);
}

void PieView::setPieRadius(double radius)
{
    m_pieRadius = radius;
    refreshSliceLayers(LayerState::Presentation);
}

void PieView::setInfoRadius(double radius)
{
    m_infoRadius = radius;
    refreshSliceLayers(LayerState::Presentation);
}

void PieView::setCenter(QPointF center)
{
    m_center = center;
    refreshSliceLayers(LayerState::Presentation);
}

SliceLayer *PieView::layerOfSlice(int index) const
{
    const auto place = std::ranges::find_if(
        m_sliceLayers, [index](const auto &layer) { return layer->index() == index; });
    return place != m_sliceLayers.end() ? place->get() : nullptr;
}

QRect PieView::sliceRect(int index) const
{
    const SliceLayer *layer = layerOfSlice(index);
    return layer ? extentOf(*layer).toAlignedRect() : QRect();
}

int PieView::getCurrentSelectedOnLocation(QPointF location) const
{
    const QPointF point = plane().fromWidget(location);
    int index = -1;
    for (const auto &layer : m_sliceLayers) {
        if (layer->path().contains(point))
            index = layer->index();
    }
    return index;
}

void PieView::refreshSliceLayer(SliceLayer &layer, LayerState state) const
{
    const auto presentation =
        state == LayerState::Presentation ? layer.presentationLayer() : nullptr;
    const SliceLayer &source = presentation ? *presentation : layer;
    const SliceGeometry geometry{plane().fromWidget(center()), pieRadius(), source.startAngle(),
                                 source.endAngle()};
    qCDebug(logChart, "%lf", geometry.end);
    if (geometry != layer.geometry())
        layer.setGeometry(geometry);
    layer.infoLayer()->setPosition(geometry.labelPoint(infoRadius()));
}

void PieView::refreshSliceLayers(LayerState state)
{
    // One rectangle for all: with many small ones the painter's clipping costs more than it saves.
    QRectF changed;
    for (const auto &layer : m_sliceLayers) {
        const QRectF before = extentOf(*layer);
        const SliceGeometry geometry = layer->geometry();
        const QPoint position = layer->infoLayer()->position();
        refreshSliceLayer(*layer, state);
        if (layer->geometry() != geometry || layer->infoLayer()->position() != position)
            changed |= before | extentOf(*layer);
    }
    if (!changed.isNull())
        update(changed.toAlignedRect());
}

void PieView::updateLayer(const SliceLayer &layer)
{
    update(extentOf(layer).toAlignedRect());
}

QRectF PieView::labelExtent(const InfoLayer &label) const
{
    return plane().toWidget(label.bounds().translated(label.position()));
}

QRectF PieView::extentOf(const SliceLayer &layer) const
{
    constexpr double kSmoothEdge = 1;
    const QRectF shape = plane().toWidget(layer.path().boundingRect());
    return (shape | labelExtent(*layer.infoLayer()))
        .adjusted(-kSmoothEdge, -kSmoothEdge, kSmoothEdge, kSmoothEdge);
}

void PieView::setRingedSlice(int index)
{
    if (std::exchange(m_ringedSlice, index) != index)
        update();
}

int PieView::drawings() const
{
    int drawings = m_ring.drawings();
    for (const auto &layer : m_sliceLayers)
        drawings += layer->picture().drawings();
    return drawings;
}

qsizetype PieView::pictureBytes() const
{
    qsizetype bytes = m_ring.bytes();
    for (const auto &layer : m_sliceLayers)
        bytes += layer->picture().bytes();
    return bytes;
}

void PieView::resizeEvent(QResizeEvent *event)
{
    BackgroundView::resizeEvent(event);
    refreshSliceLayers(LayerState::Presentation);
}

/// The pages of the program live as long as it does; only the one that is seen needs pictures.
void PieView::hideEvent(QHideEvent *event)
{
    BackgroundView::hideEvent(event);
    m_ring.forget();
    for (const auto &layer : m_sliceLayers)
        layer->picture().forget();
}

void PieView::paintEvent(QPaintEvent *event)
{
    BackgroundView::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintByRectangles(painter, event->region(),
                      [&](const QRect &part) { paintPart(painter, part); });
}

void PieView::paintPart(QPainter &painter, const QRect &exposed)
{
    paintShapes(painter, exposed);
    paintLabels(painter, exposed);
}

void PieView::paintShapes(QPainter &painter, const QRect &exposed)
{
    painter.save();
    painter.setTransform(plane().transform(), true);
    const QRectF seen = plane().fromWidget(QRectF(rect()));
    paintSlices(painter, m_sliceLayers, plane().fromWidget(QRectF(exposed)), seen);
    if (const SliceLayer *ringed = layerOfSlice(m_ringedSlice))
        paintFocusRing(painter, *ringed, seen, m_ring);
    else
        m_ring.forget();
    painter.restore();
}

void PieView::paintLabels(QPainter &painter, const QRect &exposed) const
{
    // After all slices, because a label may be wider than its slice.
    for (const auto &layer : m_sliceLayers) {
        InfoLayer &label = *layer->infoLayer();
        if (labelExtent(label).intersects(exposed))
            label.paint(painter, plane().toWidget(label.position()), layer->infoOpacity());
    }
}
