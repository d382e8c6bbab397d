#include "prefs/window/WindowDrag.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

namespace {

/// The window's size after the pointer moved these edges this far.
QSize sizeAfter(QSize size, Qt::Edges edges, QPoint way)
{
    if (edges.testFlag(Qt::LeftEdge))
        size.rwidth() -= way.x();
    if (edges.testFlag(Qt::RightEdge))
        size.rwidth() += way.x();
    if (edges.testFlag(Qt::TopEdge))
        size.rheight() -= way.y();
    if (edges.testFlag(Qt::BottomEdge))
        size.rheight() += way.y();
    return size;
}

/// The rectangle in another size; the edges that are not held stay where they are.
QRect resized(const QRect &rect, Qt::Edges edges, QSize size)
{
    QRect result(rect.topLeft(), size);
    if (edges.testFlag(Qt::LeftEdge))
        result.moveRight(rect.right());
    if (edges.testFlag(Qt::TopEdge))
        result.moveBottom(rect.bottom());
    return result;
}

} // namespace

void WindowDrag::press(QPoint pointer, Qt::Edges edges)
{
    m_hold = Hold{pointer, m_window.geometry(), edges};
}

void WindowDrag::follow(QPoint pointer)
{
    if (!m_hold)
        return;
    const QPoint way = pointer - m_hold->pointer;
    if (!m_hold->isUnderWay) {
        if (way.manhattanLength() < QApplication::startDragDistance())
            return;
        if (isLeftToTheSystem()) {
            release(); // the system keeps the pointer: no more of its events come here
            return;
        }
        m_hold->isUnderWay = true;
    }
    const QSize size = sizeAfter(m_hold->geometry.size(), m_hold->edges, way)
                           .expandedTo(m_window.minimumSize())
                           .boundedTo(m_window.maximumSize());
    m_window.setGeometry(m_hold->edges ? resized(m_hold->geometry, m_hold->edges, size)
                                       : m_hold->geometry.translated(way));
}

bool WindowDrag::isLeftToTheSystem() const
{
    QWindow *window = m_window.windowHandle();
    if (!window)
        return false;
    return m_hold->edges ? window->startSystemResize(m_hold->edges) : window->startSystemMove();
}
