#pragma once

#include "chart/slice/GradientLayer.h"
#include "chart/slice/InfoLayer.h"
#include "chart/slice/SliceArc.h"
#include "chart/slice/SliceGeometry.h"
#include "chart/slice/SlicePicture.h"

#include <QColor>
#include <QPainterPath>
#include <QPointF>
#include <memory>
#include <optional>
#include <vector>

class QDebug;

/// One slice of a pie: its share, its arc, its colours and its label.
///
/// It has two states. The model is its goal: startAngle() and endAngle(). The presentation is what
/// is on screen: presentationLayer(). They differ while an animation runs. The shape changes when
/// the chart sets a geometry made from one of them. Main thread only.
class SliceLayer final
{
public:
    SliceLayer() = default;
    /// A presentation copy: it has the angles and the look of another slice, but neither value nor
    /// label.
    SliceLayer(const SliceLayer &layer);
    SliceLayer &operator=(const SliceLayer &) = delete;

    /// The index of this slice in the data source.
    int index() const { return m_index; }
    void setIndex(int index) { m_index = index; }

    double value() const { return m_value; }
    void setValue(double value) { m_value = value; }

    /// The slice's share of the pie, from 0 to 1.
    double percentage() const { return m_percentage; }
    void setPercentage(double percentage) { m_percentage = percentage; }

    /// Model angles, in radians.
    double startAngle() const { return m_arc.angle(ArcKey::StartAngle); }
    double endAngle() const { return m_arc.angle(ArcKey::EndAngle); }

    const SliceArc &arc() const { return m_arc; }
    SliceArc &arc() { return m_arc; }

    /// The slice as it is on screen; null for a slice that was never shown.
    std::unique_ptr<SliceLayer> presentationLayer() const;

    /// Prepares the animation of an angle (see SliceArc).
    void createArcAnimationForKey(ArcKey key, double fromValue, double toValue,
                                  ArcAnimationDelegate &delegate)
    {
        m_arc.createAnimationForKey(key, fromValue, toValue, delegate);
    }

    const SliceGeometry &geometry() const { return m_geometry; }
    /// Sets the geometry, and shape and gradient with it.
    void setGeometry(const SliceGeometry &geometry);
    const QPainterPath &path() const { return m_path; }

    /// Without a colour nothing is filled.
    const std::optional<QColor> &fillColor() const { return m_fillColor; }
    void setFillColor(const std::optional<QColor> &color) { m_fillColor = color; }

    QColor shadowColor() const { return m_shadowColor; }
    QPointF shadowOffset() const { return m_shadowOffset; }

    InfoLayer *infoLayer() const { return m_infoLayer.get(); }
    void setInfoLayer(std::unique_ptr<InfoLayer> layer) { m_infoLayer = std::move(layer); }
    /// 0 while the slice is too narrow for its label, so that labels do not pile up where slices
    /// fold together; 1 on a slice that stands still.
    double infoOpacity() const;

    /// Null until the chart made one.
    GradientLayer *gradientLayer() { return m_gradientLayer ? &*m_gradientLayer : nullptr; }
    const GradientLayer *gradientLayer() const
    {
        return m_gradientLayer ? &*m_gradientLayer : nullptr;
    }
    GradientLayer &madeGradientLayer();

    /// The brush that fills the shape: the gradient if it has colours, otherwise the fill colour;
    /// none if nothing is visible. In the ChartPlane.
    QBrush brush() const;
    bool isOpaque() const { return brush().isOpaque(); }

    /// What the shape looks like while it stands still.
    SlicePicture &picture() { return m_picture; }

private:
    int m_index = 0;
    double m_value = 0;
    double m_percentage = 0;
    SliceArc m_arc;
    SliceGeometry m_geometry;
    QPainterPath m_path;
    std::optional<QColor> m_fillColor = QColor(Qt::black);
    QColor m_shadowColor = Qt::black;
    QPointF m_shadowOffset;
    std::optional<GradientLayer> m_gradientLayer;
    std::unique_ptr<InfoLayer> m_infoLayer;
    SlicePicture m_picture;
};

using SliceLayers = std::vector<std::shared_ptr<SliceLayer>>;

/// Value, share and angles in degrees.
QDebug operator<<(QDebug debug, const SliceLayer &layer);
