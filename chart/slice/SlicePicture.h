#pragma once

#include "chart/slice/SliceGeometry.h"

#include <QBrush>
#include <QPixmap>
#include <QTransform>
#include <functional>

class QPainter;

/// All that decides how a shape of a slice looks.
struct SliceLook
{
    SliceGeometry geometry;
    QBrush brush;
    bool reachesBelowStart = false; ///< its colours go on below the neighbour at its start angle
    bool reachesBelowEnd = false;

    friend bool operator==(const SliceLook &, const SliceLook &) = default;
};

/// Keeps what one slice looks like, so that a slice that stands still is drawn once and copied from
/// then on.
///
/// A look that is painted for the first time is drawn straight to the painter: a slice that moves
/// has a new look in each frame, and a picture of it would never be used. The second time a picture
/// is made. It lasts until the look changes, the scale, or where the slice lies between two pixels
/// of the device; then it is freed. It is never larger than the part of the slice that can be seen.
///
/// Owned by what paints the slice. Main thread only.
class SlicePicture final
{
public:
    using Draw = std::function<void(QPainter &)>;

    /// Paints the look. `extent` holds all that `draw` paints and that can be seen, in the
    /// coordinates of the painter.
    void paint(QPainter &painter, const SliceLook &look, const QRectF &extent, const Draw &draw);

    /// Frees the picture.
    void forget();

    /// How often the shape was drawn instead of copied.
    int drawings() const { return m_drawings; }
    /// The memory of the picture; 0 without one.
    qsizetype bytes() const;

private:
    /// What a picture is made for.
    struct Key
    {
        SliceLook look;
        QTransform toPicture;
        QSize size;

        friend bool operator==(const Key &, const Key &) = default;
    };

    void drawInto(QPainter &painter, const Draw &draw);
    void makePicture(const QPainter &like, const Draw &draw);

    Key m_key;
    QPixmap m_picture;
    int m_drawings = 0;
};
