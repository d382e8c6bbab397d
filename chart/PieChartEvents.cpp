// What the chart shows and hears: painting, pointer and keyboard.

#include "chart/PieChart.h"
#include "chart/PieChartAccessible.h"
#include "chart/SliceFocus.h"
#include "chart/SlicePainting.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace {

struct Ring
{
    QColor color;
    double width = 0;
};
/// The focus ring, inside the slice's edge: a light band with a dark rim, so that it is seen on any
/// colour and before any ground. Painted from the widest to the narrowest.
constexpr std::array kFocusRings{Ring{QColor(0, 0, 0, 90), 6}, Ring{QColor(255, 255, 255), 5},
                                 Ring{QColor(0, 0, 0, 140), 1.5}};

bool isKeyboardReason(Qt::FocusReason reason)
{
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

/// Where an arrow key points, in the widget; null for other keys.
QPointF directionOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Up:
        return {0, -1};
    case Qt::Key_Down:
        return {0, 1};
    default:
        return {};
    }
}

} // namespace

void PieChart::paintEvent(QPaintEvent *event)
{
    BackgroundView::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.save();
    painter.setTransform(plane().transform(), true);
    paintSlices(painter, m_sliceLayers, plane().fromWidget(QRectF(event->rect())));
    paintFocusRing(painter);
    painter.restore();
    paintLabels(painter, event->rect());
}

void PieChart::paintLabels(QPainter &painter, const QRect &exposed) const
{
    // After all slices: a label may be wider than its own.
    for (const auto &layer : m_sliceLayers) {
        InfoLayer &label = *layer->infoLayer();
        if (labelExtent(label).intersects(exposed))
            label.paint(painter, plane().toWidget(label.position()), layer->infoOpacity());
    }
}

void PieChart::paintFocusRing(QPainter &painter) const
{
    const SliceLayer *layer = layerOfSlice(m_focusedSlice);
    if (!layer || !m_showsFocusRing)
        return;
    painter.setClipPath(layer->path(), Qt::IntersectClip);
    for (const Ring &ring : kFocusRings)
        painter.strokePath(layer->path(), QPen(ring.color, 2 * ring.width));
}

void PieChart::resizeEvent(QResizeEvent *event)
{
    BackgroundView::resizeEvent(event);
    refreshSliceLayers(LayerState::Presentation);
}

bool PieChart::event(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        pointerLeft();
    else if (event->type() == QEvent::Enter)
        m_leftUnseen = false;
    return BackgroundView::event(event);
}

SliceLayer *PieChart::layerOfSlice(int index) const
{
    const auto place = std::ranges::find_if(
        m_sliceLayers, [index](const auto &layer) { return layer->index() == index; });
    return place != m_sliceLayers.end() ? place->get() : nullptr;
}

QRect PieChart::sliceRect(int index) const
{
    const SliceLayer *layer = layerOfSlice(index);
    return layer ? extentOf(*layer).toAlignedRect() : QRect();
}

int PieChart::getCurrentSelectedOnLocation(QPointF location) const
{
    const QPointF point = plane().fromWidget(location);
    int index = -1;
    for (const auto &layer : m_sliceLayers) {
        if (layer->path().contains(point))
            index = layer->index();
    }
    return index;
}

void PieChart::installTrackingArea()
{
    if (m_hasTrackingArea)
        return;
    m_hasTrackingArea = true;
    setMouseTracking(true);
    if (std::exchange(m_leftUnseen, false))
        reportHover(-1);
}

void PieChart::destoryTrackingArea()
{
    m_hasTrackingArea = false;
    setMouseTracking(false);
}

void PieChart::pointerLeft()
{
    // Outside the widget no move is told, so leaving it is the last chance to say so. A popup, such
    // as one that explains the slice, takes the pointer away for a while only.
    const bool isBorrowed = QApplication::activePopupWidget() != nullptr;
    if (m_hasTrackingArea && !isBorrowed)
        reportHover(-1);
    else
        m_leftUnseen = true;
}

void PieChart::mouseMoveEvent(QMouseEvent *event)
{
    if (m_hasTrackingArea && event->buttons() == Qt::NoButton)
        reportHover(getCurrentSelectedOnLocation(event->position()));
}

void PieChart::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        BackgroundView::mousePressEvent(event);
        return;
    }
    // A click that brings the window to the front arrives here as well, and counts.
    const int index = getCurrentSelectedOnLocation(event->position());
    if (index == -1)
        return;
    if (canSelectSlice(index)) {
        m_focusedSlice = index; // the keyboard goes on from here
        m_showsFocusRing = false;
        update();
    }
    selectSlice(index);
}

void PieChart::reportHover(int index)
{
    if (delegate())
        delegate()->didHoverOverSliceAtIndex(*this, index);
}

void PieChart::selectSlice(int index)
{
    if (delegate())
        delegate()->didSelectSliceAtIndex(*this, index);
}

bool PieChart::canSelectSlice(int index)
{
    return delegate() != nullptr && layerOfSlice(index) != nullptr &&
           delegate()->canSelectSliceAtIndex(*this, index);
}

void PieChart::updateFocusPolicy()
{
    const bool canSelect = std::ranges::any_of(
        m_sliceLayers, [this](const auto &layer) { return canSelectSlice(layer->index()); });
    setFocusPolicy(canSelect ? Qt::StrongFocus : Qt::NoFocus);
    if (!canSelectSlice(m_focusedSlice))
        m_focusedSlice = -1;
}

void PieChart::focusSlice(int index)
{
    if (!hasFocus())
        setFocus();
    m_focusedSlice = index;
    m_showsFocusRing = true;
    update();
    announceFocusedSlice(*this, index);
    // A slice in the focus ring is looked at as one under the pointer is.
    if (m_hasTrackingArea)
        reportHover(index);
}

void PieChart::moveFocus(int key)
{
    std::vector<FocusStop> stops;
    for (const auto &layer : m_sliceLayers) {
        // Where it is heading, not where it is: arrows mean the same while the pie moves.
        SliceGeometry goal = layer->geometry();
        goal.start = layer->startAngle();
        goal.end = layer->endAngle();
        if (canSelectSlice(layer->index()))
            stops.push_back({layer->index(), plane().toWidget(goal.labelPoint(infoRadius()))});
    }
    std::ranges::sort(stops, {}, &FocusStop::index);
    if (stops.empty())
        return;
    if (key == Qt::Key_Home)
        focusSlice(stops.front().index);
    else if (key == Qt::Key_End)
        focusSlice(stops.back().index);
    else
        focusSlice(neighbourTowards(directionOf(key), m_focusedSlice, stops));
}

void PieChart::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        moveFocus(event->key());
        return;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (canSelectSlice(m_focusedSlice)) {
            selectSlice(m_focusedSlice);
            return;
        }
        [[fallthrough]];
    default:
        BackgroundView::keyPressEvent(event);
    }
}

void PieChart::focusInEvent(QFocusEvent *event)
{
    BackgroundView::focusInEvent(event);
    if (!isKeyboardReason(event->reason()))
        return;
    if (canSelectSlice(m_focusedSlice))
        focusSlice(m_focusedSlice);
    else
        moveFocus(Qt::Key_Home);
}

void PieChart::focusOutEvent(QFocusEvent *event)
{
    BackgroundView::focusOutEvent(event);
    m_showsFocusRing = false;
    update();
}
