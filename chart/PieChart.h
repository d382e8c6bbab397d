#pragma once

#include "chart/ArcAnimation.h"
#include "chart/ChartPlane.h"
#include "chart/PieChartDataSource.h"
#include "chart/PieChartDelegate.h"
#include "chart/SliceLayer.h"
#include "widgets/BackgroundView.h"

#include <QTimer>
#include <algorithm>
#include <numbers>
#include <vector>

/// An animated pie. It asks its data source for slices, lays them out counter-clockwise around its
/// centre, animates every change of their arcs and puts a label on each. Slices are flat until the
/// first animation has run to its end, and wear two-colour gradients from then on.
///
/// Angles are radians, counter-clockwise from three o'clock, as in a textbook. Points, such as
/// center(), are in the widget's own coordinates, as everywhere in Qt. Lengths are in points.
///
/// Center, pie radius and label radius follow the widget's size until they are set.
///
/// Data source and delegate are held weakly. Main thread only.
class PieChart final : public BackgroundView, private ArcAnimationDelegate
{
    Q_OBJECT
    Q_PROPERTY(double startPieAngle READ startPieAngle WRITE setStartPieAngle)
    Q_PROPERTY(double animationSpeed READ animationSpeed WRITE setAnimationSpeed)
    Q_PROPERTY(double pieRadius READ pieRadius WRITE setPieRadius)
    Q_PROPERTY(double infoRadius READ infoRadius WRITE setInfoRadius)

public:
    explicit PieChart(QWidget *parent = nullptr);
    explicit PieChart(const QRect &frame, QWidget *parent = nullptr);
    /// The label radius is still the one that fits the frame, not the given radius.
    PieChart(const QRect &frame, QPointF center, double radius, QWidget *parent = nullptr);
    ~PieChart() override;

    PieChartDataSource *dataSource() const { return m_dataSource.get(); }
    void setDataSource(PieChartDataSource *dataSource);

    PieChartDelegate *delegate() const { return m_delegate.get(); }
    void setDelegate(PieChartDelegate *delegate);

    /// Where the first slice begins: at the top, if nobody says otherwise. Used by the next reload.
    double startPieAngle() const { return m_startPieAngle; }
    void setStartPieAngle(double radians) { m_startPieAngle = radians; }

    /// How long an animation takes, in seconds. 0 shows each new state at once, and so does a
    /// desktop whose user switched animations off.
    double animationSpeed() const { return m_animationSpeed; }
    void setAnimationSpeed(double seconds) { m_animationSpeed = seconds; }

    /// Outer radius of every slice; at first half of the widget's smaller side.
    double pieRadius() const { return m_pieRadius.value_or(halfSide()); }
    void setPieRadius(double radius);

    /// How far from the centre the labels sit; at first a quarter of the widget's smaller side.
    double infoRadius() const { return m_infoRadius.value_or(halfSide() / 2); }
    void setInfoRadius(double radius);

    /// At first the middle of the widget.
    QPointF center() const override { return m_center.value_or(QRectF(rect()).center()); }
    void setCenter(QPointF center) override;

    /// Whether an animation has run to its end, so that slices wear gradients. A page that wants
    /// its pie to grow in flat again sets it back.
    bool didLoad() const { return m_didLoad; }
    void setDidLoad(bool didLoad) { m_didLoad = didLoad; }

    /// Reads the data source anew and animates the pie from what is on screen to the new state.
    /// Without data source nothing happens.
    void reloadData();

    /// Folds every slice to nothing at the start angle and turns the shadow off.
    void animateOut();

    /// Gives every slice its gradient, from the data source's colours.
    void reloadGradients();

    /// The slices, lowest first. Each knows its index; after a reload with fewer slices that is not
    /// always its place in this list.
    const SliceLayers &sliceLayers() const { return m_sliceLayers; }

    /// The layer of one slice; null if there is no such slice.
    SliceLayer *layerOfSlice(int index) const;
    /// What it covers, label included, in the widget.
    QRect sliceRect(int index) const;

    /// Hands the record, or null, to the slice's label.
    void updateInfoForLayer(SliceLayer &layer, std::shared_ptr<Info> info);

    /// The index of the slice whose painted shape contains the point, the topmost if several do;
    /// -1 for none.
    int getCurrentSelectedOnLocation(QPointF location) const;

    /// Stops reporting where the pointer is, until the next animation has ended.
    void destoryTrackingArea();
    bool hasTrackingArea() const { return m_hasTrackingArea; }

    bool isAnimating() const { return !m_runningAnimations.empty(); }

    /// Moves the running animations to the clock's time, and ends those whose time has come. Runs
    /// by itself while there are any.
    void updateTimerFired();

    /// What animations take the time from, for tests that want to hold it.
    void setClock(MediaClock clock) { m_clock = std::move(clock); }

    /// The colour of a slice for which the data source has none.
    static QColor defaultColor(int index);

    /// The slice that the keyboard acts on, -1 for none.
    int focusedSlice() const { return m_focusedSlice; }
    /// Takes the keyboard to a slice and shows the focus ring there. It counts as hovering.
    void focusSlice(int index);

    bool canSelectSlice(int index);
    /// Does what a click on the slice does.
    void selectSlice(int index);

Q_SIGNALS:
    /// The last running animation ran to its end: the pie stands still.
    void animationFinished();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    static constexpr double kDefaultAnimationSpeed = 0.75;

    /// Which angles of a slice its shape is made from.
    enum class LayerState { Model, Presentation };
    /// What the data source said for one reload.
    struct Reading
    {
        std::vector<std::shared_ptr<Info>> infos;
        std::vector<double> values;
        double sum = 0;
    };
    struct Arc
    {
        double start;
        double end;
    };

    void animationDidStart(const ArcAnimation &animation) override;
    void animationDidStop(const ArcAnimation &animation, Completion completion) override;
    void installTrackingArea();

    Reading readSlices();
    void layOut(const Reading &reading);
    void setLooks(SliceLayer &layer);
    void collapse();
    void animateSlice(SliceLayer &layer, Arc from, Arc to);
    void removeSlices(const SliceLayers &layers);
    std::shared_ptr<SliceLayer> createSliceLayer();
    void commitAnimations();
    QColor colorForSlice(int index);

    double halfSide() const { return static_cast<double>(std::min(width(), height())) / 2; }
    void refreshSliceLayer(SliceLayer &layer, LayerState state);
    void refreshSliceLayers(LayerState state);
    void updateLayer(const SliceLayer &layer);
    QRectF labelExtent(const InfoLayer &label) const;
    QRectF extentOf(const SliceLayer &layer) const;
    ChartPlane plane() const { return ChartPlane(height()); }

    void paintLabels(QPainter &painter, const QRect &exposed) const;
    void paintFocusRing(QPainter &painter) const;

    void labelChanged(const SliceLayer &layer);
    void pointerLeft();
    void reportHover(int index);
    void updateFocusPolicy();
    void moveFocus(int key);

    WeakReference<PieChartDataSource> m_dataSource;
    WeakReference<PieChartDelegate> m_delegate;
    MediaClock m_clock = steadyMediaTime;
    double m_startPieAngle = std::numbers::pi / 2;
    double m_animationSpeed = kDefaultAnimationSpeed;
    std::optional<QPointF> m_center;
    std::optional<double> m_pieRadius;
    std::optional<double> m_infoRadius;

    std::shared_ptr<SizeQueue> m_sizeQueue = makeSizeQueue(); ///< of all labels
    SliceLayers m_sliceLayers;
    QTimer m_updateTimer{this};
    std::vector<const ArcAnimation *> m_runningAnimations;
    bool m_didLoad = false;

    bool m_hasTrackingArea = false;
    bool m_leftUnseen = false; ///< the pointer left while nobody was to be told
    int m_focusedSlice = -1;
    bool m_showsFocusRing = false;
};
