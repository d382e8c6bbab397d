#pragma once

#include "chart/PieAnimation.h"
#include "chart/PieChartDelegate.h"
#include "chart/PieInteraction.h"
#include "chart/PieView.h"
#include "chart/SliceSource.h"

#include <numbers>

/// An animated pie. It asks its data source for slices, lays them out counter-clockwise around its
/// centre, animates every change of their arcs and puts a label on each. Slices are flat until the
/// first animation has reached its end, and have two-colour gradients from then on.
///
/// Angles are radians, counter-clockwise from three o'clock, as in a textbook.
///
/// Data source and delegate are held weakly. Main thread only.
class PieChart final : public PieView
{
    Q_OBJECT
    Q_PROPERTY(double startPieAngle READ startPieAngle WRITE setStartPieAngle)
    Q_PROPERTY(double animationSpeed READ animationSpeed WRITE setAnimationSpeed)

public:
    explicit PieChart(QWidget *parent = nullptr);
    explicit PieChart(const QRect &frame, QWidget *parent = nullptr);
    /// The label radius is still the one that fits the frame, not the given radius.
    PieChart(const QRect &frame, QPointF center, double radius, QWidget *parent = nullptr);

    PieChartDataSource *dataSource() const { return m_source.get(); }
    void setDataSource(PieChartDataSource *dataSource) { m_source.set(dataSource); }

    PieChartDelegate *delegate() const { return m_delegate.get(); }
    void setDelegate(PieChartDelegate *delegate);

    /// Where the first slice begins: at the top unless set. The next reload uses it.
    double startPieAngle() const { return m_startPieAngle; }
    void setStartPieAngle(double radians) { m_startPieAngle = radians; }

    /// How long an animation takes, in seconds (see PieAnimation).
    double animationSpeed() const { return m_animation.speed(); }
    void setAnimationSpeed(double seconds) { m_animation.setSpeed(seconds); }

    /// Whether an animation has reached its end, so that slices have gradients. A page that wants
    /// its pie to grow in flat again sets it back to false.
    bool didLoad() const { return m_didLoad; }
    void setDidLoad(bool didLoad) { m_didLoad = didLoad; }

    /// Reads the data source anew and animates the pie from what is on screen to the new state.
    /// Does nothing without data source.
    void reloadData();

    /// Folds every slice to nothing at the start angle and turns the shadow off.
    void animateOut();

    /// Gives every slice its gradient, from the data source's colours.
    void reloadGradients();

    /// Hands the record, or null, to the slice's label.
    void updateInfoForLayer(SliceLayer &layer, std::shared_ptr<Info> info);

    bool isAnimating() const { return m_animation.isRunning(); }
    void updateTimerFired() { m_animation.updateTimerFired(); }
    /// Sets the clock of the animations, for tests that want to hold the time.
    void setClock(MediaClock clock) { m_animation.setClock(std::move(clock)); }

    /// What the pointer and the keyboard do with the slices.
    PieInteraction &interaction() { return m_interaction; }

Q_SIGNALS:
    /// The last running animation has reached its end: the pie stands still.
    void animationFinished();

private:
    void connectParts();
    void standStill();
    void layOut(const SliceReading &reading);
    void setLooks(SliceLayer &layer);
    void collapse();
    void removeSlices(const SliceLayers &layers);
    std::shared_ptr<SliceLayer> createSliceLayer();

    SliceSource m_source{*this};
    WeakReference<PieChartDelegate> m_delegate;
    double m_startPieAngle = std::numbers::pi / 2;
    std::shared_ptr<SizeQueue> m_sizeQueue = makeSizeQueue(); ///< shared by all labels
    bool m_didLoad = false;
    PieAnimation m_animation{*this};
    PieInteraction m_interaction;
};
