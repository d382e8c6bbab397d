#pragma once

#include "chart/ArcAnimation.h"
#include "chart/GradientLayer.h"
#include "chart/InfoLayer.h"
#include "chart/SliceGeometry.h"

#include <QColor>
#include <QPainterPath>
#include <QPointF>
#include <array>
#include <memory>
#include <optional>
#include <vector>

class QDebug;

/// The two angles of a slice, each of which can be animated.
enum class ArcKey { StartAngle, EndAngle };

/// One slice of a pie: its share, its arc, its colours and its label.
///
/// It has two states. The model is where it is heading: startAngle() and endAngle(). The
/// presentation is what is on screen: presentationLayer(). They differ while an animation runs.
/// The shape follows when the chart sets a geometry made from one of them. Main thread only.
class SliceLayer final
{
public:
    SliceLayer() = default;
    /// A presentation copy: angles and looks of another slice, but neither value nor label.
    SliceLayer(const SliceLayer &layer);
    SliceLayer &operator=(const SliceLayer &) = delete;
    ~SliceLayer() = default;

    /// Which slice of the data source this is.
    int index() const { return m_index; }
    void setIndex(int index) { m_index = index; }

    double value() const { return m_value; }
    void setValue(double value) { m_value = value; }

    /// A fraction, from 0 to 1.
    double percentage() const { return m_percentage; }
    void setPercentage(double percentage) { m_percentage = percentage; }

    /// Model angles, in radians.
    double startAngle() const { return angle(ArcKey::StartAngle); }
    double endAngle() const { return angle(ArcKey::EndAngle); }
    double angle(ArcKey key) const { return m_angles[slot(key)]; }
    /// Without animation; a running one goes on.
    void setAngle(ArcKey key, double radians);

    /// The slice as it is on screen; null for one that never was.
    std::unique_ptr<SliceLayer> presentationLayer() const;

    /// Sets the model angle and prepares its animation: from what is on screen, or from `fromValue`
    /// if nothing is. A running animation of the same angle is interrupted. The new one begins with
    /// beginAnimations().
    void createArcAnimationForKey(ArcKey key, double fromValue, double toValue,
                                  ArcAnimationDelegate &delegate);
    /// The animation of an angle; null if there is none.
    const ArcAnimation *animationForKey(ArcKey key) const { return m_animations[slot(key)].get(); }

    /// Puts the slice on screen and begins the animations that were prepared.
    void beginAnimations(MediaTime now, MediaTime duration);
    /// Moves what is on screen to the given time.
    void advance(MediaTime now);
    /// Ends the animations that are over.
    void finishAnimations(MediaTime now);
    /// Interrupts the animations; the model angles stay.
    void removeAllAnimations();

    const SliceGeometry &geometry() const { return m_geometry; }
    /// Shape and gradient follow.
    void setGeometry(const SliceGeometry &geometry);
    const QPainterPath &path() const { return m_path; }

    /// Nothing is filled without a colour.
    const std::optional<QColor> &fillColor() const { return m_fillColor; }
    void setFillColor(const std::optional<QColor> &color) { m_fillColor = color; }

    QColor shadowColor() const { return m_shadowColor; }
    QPointF shadowOffset() const { return m_shadowOffset; }

    InfoLayer *infoLayer() const { return m_infoLayer.get(); }
    void setInfoLayer(std::unique_ptr<InfoLayer> layer) { m_infoLayer = std::move(layer); }
    /// 0 while the slice is too narrow to carry its label, so that labels do not pile up where
    /// slices fold together; 1 on one that stands still.
    double infoOpacity() const;

    /// Null until the chart made one.
    GradientLayer *gradientLayer() { return m_gradientLayer ? &*m_gradientLayer : nullptr; }
    const GradientLayer *gradientLayer() const
    {
        return m_gradientLayer ? &*m_gradientLayer : nullptr;
    }
    GradientLayer &madeGradientLayer();

    /// What the shape is filled with: the gradient where it has colours, else the fill colour; none
    /// if there is nothing to be seen. In the ChartPlane.
    QBrush brush() const;
    bool isOpaque() const { return brush().isOpaque(); }

private:
    static constexpr std::size_t slot(ArcKey key) { return static_cast<std::size_t>(key); }

    int m_index = 0;
    double m_value = 0;
    double m_percentage = 0;
    std::array<double, 2> m_angles{};
    std::optional<std::array<double, 2>> m_presentedAngles;
    std::array<std::unique_ptr<ArcAnimation>, 2> m_animations;
    SliceGeometry m_geometry;
    QPainterPath m_path;
    std::optional<QColor> m_fillColor = QColor(Qt::black);
    QColor m_shadowColor = Qt::black;
    QPointF m_shadowOffset;
    std::optional<GradientLayer> m_gradientLayer;
    std::unique_ptr<InfoLayer> m_infoLayer;
};

using SliceLayers = std::vector<std::shared_ptr<SliceLayer>>;

/// Value, share and angles in degrees.
QDebug operator<<(QDebug debug, const SliceLayer &layer);
