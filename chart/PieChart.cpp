#include "chart/PieChart.h"

#include "chart/PieChartAccessible.h"
#include "platform/base/Log.h"
#include "platform/look/ViewAlpha.h"

#include <algorithm>

namespace {

constexpr std::chrono::milliseconds kFrame{1000 / 60};

} // namespace

PieChart::PieChart(QWidget *parent) : BackgroundView(parent)
{
    setBackgroundColor(Qt::transparent);
    m_updateTimer.setObjectName(QStringLiteral("updateTimer"));
    m_updateTimer.setTimerType(Qt::PreciseTimer);
    m_updateTimer.setInterval(kFrame);
    connect(&m_updateTimer, &QTimer::timeout, this, &PieChart::updateTimerFired);
    installPieChartAccessibility();
}

PieChart::PieChart(const QRect &frame, QWidget *parent) : PieChart(parent)
{
    setGeometry(frame);
}

PieChart::PieChart(const QRect &frame, QPointF center, double radius, QWidget *parent)
    : PieChart(frame, parent)
{
    setCenter(center);
    setPieRadius(radius);
}

PieChart::~PieChart() = default;

void PieChart::setDataSource(PieChartDataSource *dataSource)
{
    m_dataSource = dataSource;
}

void PieChart::setDelegate(PieChartDelegate *delegate)
{
    m_delegate = delegate;
    updateFocusPolicy();
}

void PieChart::setPieRadius(double radius)
{
    m_pieRadius = radius;
    refreshSliceLayers(LayerState::Presentation);
}

void PieChart::setInfoRadius(double radius)
{
    m_infoRadius = radius;
    refreshSliceLayers(LayerState::Presentation);
}

void PieChart::setCenter(QPointF center)
{
    m_center = center;
    refreshSliceLayers(LayerState::Presentation);
}

void PieChart::commitAnimations()
{
    const MediaTime now = m_clock();
    const auto wanted = std::chrono::ceil<std::chrono::milliseconds>(MediaTime(m_animationSpeed));
    const MediaTime duration = animationDuration(*this, wanted);
    for (const auto &layer : m_sliceLayers)
        layer->beginAnimations(now, duration);
    refreshSliceLayers(LayerState::Presentation);
    if (duration <= MediaTime::zero())
        updateTimerFired();
}

void PieChart::animationDidStart(const ArcAnimation &animation)
{
    destoryTrackingArea();
    if (!m_updateTimer.isActive())
        m_updateTimer.start();
    m_runningAnimations.push_back(&animation);
}

void PieChart::animationDidStop(const ArcAnimation &animation, Completion completion)
{
    std::erase(m_runningAnimations, &animation);
    if (!m_runningAnimations.empty() || completion == Completion::Interrupted)
        return;
    m_updateTimer.stop();
    installTrackingArea();
    if (!m_didLoad) {
        qCDebug(logChart, "here");
        refreshSliceLayers(LayerState::Model);
        reloadGradients();
    }
    m_didLoad = true;
    qCDebug(logChart, "Animation finished");
    Q_EMIT animationFinished();
}

void PieChart::updateTimerFired()
{
    const MediaTime now = m_clock();
    for (const auto &layer : m_sliceLayers)
        layer->advance(now);
    refreshSliceLayers(LayerState::Presentation);
    // A copy: whoever hears of the last one's end may reload.
    for (const auto &layer : SliceLayers(m_sliceLayers))
        layer->finishAnimations(now);
}

void PieChart::refreshSliceLayer(SliceLayer &layer, LayerState state)
{
    const auto presentation =
        state == LayerState::Presentation ? layer.presentationLayer() : nullptr;
    const SliceLayer &source = presentation ? *presentation : layer;
    const SliceGeometry geometry{plane().fromWidget(center()), pieRadius(), source.startAngle(),
                                 source.endAngle()};
    qCDebug(logChart, "%lf", geometry.end);
    if (geometry != layer.geometry())
        layer.setGeometry(geometry);
    layer.infoLayer()->setPosition(geometry.labelPoint(infoRadius()));
}

void PieChart::refreshSliceLayers(LayerState state)
{
    // One rectangle for all: with many small ones the painter's clipping costs more than it saves.
    QRectF changed;
    for (const auto &layer : m_sliceLayers) {
        const QRectF before = extentOf(*layer);
        const SliceGeometry geometry = layer->geometry();
        const QPoint position = layer->infoLayer()->position();
        refreshSliceLayer(*layer, state);
        if (layer->geometry() != geometry || layer->infoLayer()->position() != position)
            changed |= before | extentOf(*layer);
    }
    if (!changed.isNull())
        update(changed.toAlignedRect());
}

void PieChart::updateLayer(const SliceLayer &layer)
{
    update(extentOf(layer).toAlignedRect());
}

QRectF PieChart::labelExtent(const InfoLayer &label) const
{
    return plane().toWidget(label.bounds().translated(label.position()));
}

QRectF PieChart::extentOf(const SliceLayer &layer) const
{
    constexpr double kSmoothEdge = 1;
    const QRectF shape = plane().toWidget(layer.path().boundingRect());
    return (shape | labelExtent(*layer.infoLayer()))
        .adjusted(-kSmoothEdge, -kSmoothEdge, kSmoothEdge, kSmoothEdge);
}
