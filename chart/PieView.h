#pragma once

#include "chart/slice/ChartPlane.h"
#include "chart/slice/SliceLayer.h"
#include "widgets/BackgroundView.h"

#include <algorithm>
#include <optional>

/// The angles from which the shape of a slice is made: those of its goal, or those on screen.
enum class LayerState { Model, Presentation };

/// Shows slices around a centre: it owns them, gives them their shape, paints them with their
/// labels, and tells which of them lies at a point. Other classes know what the slices mean, why
/// they move and what the user does with them.
///
/// Points, such as center(), are in the widget's own coordinates, as everywhere in Qt. Lengths are
/// in points. Center, pie radius and label radius follow the widget's size until they are set.
///
/// Made to be derived from. Main thread only.
class PieView : public BackgroundView
{
    Q_OBJECT
    Q_PROPERTY(double pieRadius READ pieRadius WRITE setPieRadius)
    Q_PROPERTY(double infoRadius READ infoRadius WRITE setInfoRadius)

public:
    explicit PieView(QWidget *parent = nullptr);

    /// Outer radius of every slice; half of the widget's smaller side unless set.
    double pieRadius() const { return m_pieRadius.value_or(halfSide()); }
    void setPieRadius(double radius);

    /// How far the labels are from the centre; a quarter of the widget's smaller side unless set.
    double infoRadius() const { return m_infoRadius.value_or(halfSide() / 2); }
    void setInfoRadius(double radius);

    /// The middle of the widget unless set.
    QPointF center() const override { return m_center.value_or(QRectF(rect()).center()); }
    void setCenter(QPointF center) override;

    /// The plane in which the slices are laid out.
    ChartPlane plane() const { return ChartPlane(height()); }

    /// The slices, lowest first. Each knows its index; after a reload with fewer slices the index
    /// is not always its position in this list.
    const SliceLayers &sliceLayers() const { return m_sliceLayers; }

    /// The layer of one slice; null if there is no such slice.
    SliceLayer *layerOfSlice(int index) const;
    /// The area of a slice, label included, in the widget's coordinates.
    QRect sliceRect(int index) const;
    /// The index of the slice whose painted shape contains the point, the topmost if several do;
    /// -1 for none.
    int getCurrentSelectedOnLocation(QPointF location) const;

    /// Sets the shape of every slice, and the position of its label, from its angles.
    void refreshSliceLayers(LayerState state);
    /// Paints a slice again whose look has changed.
    void updateLayer(const SliceLayer &layer);

    /// Puts the focus ring on a slice, on none for -1.
    void setRingedSlice(int index);

    /// How often a slice or the ring was drawn and not copied from its picture.
    int drawings() const;
    /// The memory of the pictures. A view that is hidden has none.
    qsizetype pictureBytes() const;

protected:
    /// For the derived class, which puts slices in and takes them out.
    SliceLayers &ownSliceLayers() { return m_sliceLayers; }

    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    double halfSide() const { return static_cast<double>(std::min(width(), height())) / 2; }
    void refreshSliceLayer(SliceLayer &layer, LayerState state) const;
    QRectF labelExtent(const InfoLayer &label) const;
    QRectF extentOf(const SliceLayer &layer) const;
    void paintPart(QPainter &painter, const QRect &exposed);
    void paintShapes(QPainter &painter, const QRect &exposed);
    void paintLabels(QPainter &painter, const QRect &exposed) const;

    std::optional<QPointF> m_center;
    std::optional<double> m_pieRadius;
    std::optional<double> m_infoRadius;
    SliceLayers m_sliceLayers;
    int m_ringedSlice = -1;
    SlicePicture m_ring;
};
