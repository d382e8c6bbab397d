#include "prefs/window/EdgeGrip.h"

#include <QMouseEvent>

namespace {

constexpr int kThickness = 5;
constexpr int kCornerLength = 10;

Qt::CursorShape cursorFor(Qt::Edges edges)
{
    const bool isHorizontal = edges.testAnyFlags(Qt::LeftEdge | Qt::RightEdge);
    const bool isVertical = edges.testAnyFlags(Qt::TopEdge | Qt::BottomEdge);
    if (!isVertical)
        return Qt::SizeHorCursor;
    if (!isHorizontal)
        return Qt::SizeVerCursor;
    const bool isFalling =
        edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge);
    return isFalling ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

/// Where a grip begins and how long it is along one axis.
struct Span
{
    int start;
    int length;
};

Span spanOf(bool isAtStart, bool isAtEnd, int length, int thickness)
{
    if (isAtStart)
        return {0, thickness};
    if (isAtEnd)
        return {length - thickness, thickness};
    return {kCornerLength, length - 2 * kCornerLength};
}

} // namespace

EdgeGrip::EdgeGrip(Qt::Edges edges, QWidget *parent) : QWidget(parent), m_edges(edges)
{
    setCursor(cursorFor(edges));
}

void EdgeGrip::place(QSize parent)
{
    const Span x = spanOf(m_edges.testFlag(Qt::LeftEdge), m_edges.testFlag(Qt::RightEdge),
                          parent.width(), kThickness);
    const Span y = spanOf(m_edges.testFlag(Qt::TopEdge), m_edges.testFlag(Qt::BottomEdge),
                          parent.height(), kThickness);
    setGeometry(x.start, y.start, x.length, y.length);
}

void EdgeGrip::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT pressed(event->globalPosition().toPoint(), m_edges);
}
