#pragma once

#include <QWidget>

/// A strip along an edge (or a square in a corner) of its parent, by which the user resizes the
/// parent's window. It is invisible; only the pointer's shape shows it. Main thread.
class EdgeGrip final : public QWidget
{
    Q_OBJECT

public:
    EdgeGrip(Qt::Edges edges, QWidget *parent);

    /// Lays itself along its edges of a parent of this size.
    void place(QSize parent);

Q_SIGNALS:
    /// The user took hold at this position on the screen: the window shall follow the pointer with
    /// these edges.
    void pressed(QPoint pointer, Qt::Edges edges);

protected:
    void mousePressEvent(QMouseEvent *event) override;

private:
    Qt::Edges m_edges;
};
