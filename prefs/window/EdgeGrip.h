#pragma once

#include <QWidget>

/// A strip along an edge (or a square in a corner) of its parent, by which the parent's window is
/// resized. Not seen; shows itself by the pointer's shape. Main thread.
class EdgeGrip final : public QWidget
{
    Q_OBJECT

public:
    EdgeGrip(Qt::Edges edges, QWidget *parent);

    /// Lays itself along its edges of a parent of this size.
    void place(QSize parent);

Q_SIGNALS:
    /// The user took hold at this place of the screen: the window shall follow the pointer with
    /// these edges.
    void pressed(QPoint pointer, Qt::Edges edges);

protected:
    void mousePressEvent(QMouseEvent *event) override;

private:
    Qt::Edges m_edges;
};
