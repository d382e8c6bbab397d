#include "chart/PieInteraction.h"

#include "chart/PieView.h"
#include "chart/SliceFocus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <utility>

namespace {

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

PieInteraction::PieInteraction(PieView &view, CanSelect canSelect)
    : QObject(&view), m_view(view), m_canSelect(std::move(canSelect))
{
    view.installEventFilter(this);
}

bool PieInteraction::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Enter:
        m_leftUnseen = false;
        return false;
    case QEvent::Leave:
        pointerLeft();
        return false;
    case QEvent::FocusIn:
        focusCame(static_cast<QFocusEvent *>(event)->reason());
        return false;
    case QEvent::FocusOut:
        m_view.setRingedSlice(-1);
        return false;
    default:
        // An event filter also gets the events that a disabled widget ignores.
        return m_view.isEnabled() && hearInput(*event);
    }
}

/// Handles an event; true when it must go no further.
bool PieInteraction::hearInput(QEvent &event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: // the second of two fast clicks counts too
        return press(static_cast<QMouseEvent &>(event));
    case QEvent::MouseMove:
        move(static_cast<QMouseEvent &>(event));
        return true;
    case QEvent::KeyPress:
        return pressKey(static_cast<QKeyEvent &>(event));
    default:
        return false;
    }
}

void PieInteraction::installTrackingArea()
{
    if (m_hasTrackingArea)
        return;
    m_hasTrackingArea = true;
    m_view.setMouseTracking(true);
    if (std::exchange(m_leftUnseen, false))
        Q_EMIT hovered(-1);
}

void PieInteraction::destoryTrackingArea()
{
    m_hasTrackingArea = false;
    m_view.setMouseTracking(false);
}

void PieInteraction::pointerLeft()
{
    // No moves are reported outside the widget, so this is the last chance to report that the
    // pointer left. A popup, such as one that explains the slice, takes the pointer away only for a
    // while.
    const bool isBorrowed = QApplication::activePopupWidget() != nullptr;
    if (m_hasTrackingArea && !isBorrowed)
        Q_EMIT hovered(-1);
    else
        m_leftUnseen = true;
}

void PieInteraction::move(const QMouseEvent &event)
{
    if (m_hasTrackingArea && event.buttons() == Qt::NoButton)
        Q_EMIT hovered(m_view.getCurrentSelectedOnLocation(event.position()));
}

bool PieInteraction::press(const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton)
        return false;
    // A click that brings the window to the front arrives here too, and counts.
    const int index = m_view.getCurrentSelectedOnLocation(event.position());
    if (index == -1)
        return true;
    if (canSelectSlice(index)) {
        m_focusedSlice = index; // the keyboard goes on from here
        m_view.setRingedSlice(-1);
    }
    selectSlice(index);
    return true;
}

bool PieInteraction::canSelectSlice(int index) const
{
    return m_view.layerOfSlice(index) != nullptr && m_canSelect(index);
}

void PieInteraction::selectSlice(int index)
{
    Q_EMIT selected(index);
}

void PieInteraction::updateFocusPolicy()
{
    const bool canSelect = std::ranges::any_of(
        m_view.sliceLayers(), [this](const auto &layer) { return canSelectSlice(layer->index()); });
    m_view.setFocusPolicy(canSelect ? Qt::StrongFocus : Qt::NoFocus);
    if (canSelectSlice(m_focusedSlice))
        return;
    m_focusedSlice = -1;
    m_view.setRingedSlice(-1);
}

void PieInteraction::focusSlice(int index)
{
    if (!m_view.hasFocus())
        m_view.setFocus();
    m_focusedSlice = index;
    m_view.setRingedSlice(index);
    Q_EMIT focusMoved(index);
    // A slice in the focus ring counts as a slice under the pointer.
    if (m_hasTrackingArea)
        Q_EMIT hovered(index);
}

void PieInteraction::moveFocus(int key)
{
    std::vector<FocusStop> stops;
    for (const auto &layer : m_view.sliceLayers()) {
        // This takes the goal of the slice, not its present position, so that arrows mean the same
        // while the pie moves.
        SliceGeometry goal = layer->geometry();
        goal.start = layer->startAngle();
        goal.end = layer->endAngle();
        if (canSelectSlice(layer->index()))
            stops.push_back(
                {layer->index(), m_view.plane().toWidget(goal.labelPoint(m_view.infoRadius()))});
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

bool PieInteraction::pressKey(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        moveFocus(event.key());
        return true;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!canSelectSlice(m_focusedSlice))
            return false;
        selectSlice(m_focusedSlice);
        return true;
    default:
        return false;
    }
}

void PieInteraction::focusCame(Qt::FocusReason reason)
{
    if (!isKeyboardReason(reason))
        return;
    if (canSelectSlice(m_focusedSlice))
        focusSlice(m_focusedSlice);
    else
        moveFocus(Qt::Key_Home);
}
