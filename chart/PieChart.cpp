#include "chart/PieChart.h"

#include "chart/PieChartAccessible.h"
#include "chart/SliceReload.h"
#include "platform/Log.h"
#include "platform/ViewAlpha.h"
#include "slices/Info.h"

#include <QPointer>
#include <algorithm>
#include <cmath>

namespace {

constexpr std::chrono::milliseconds kFrame{1000 / 60};
constexpr double kFullTurn = 2 * std::numbers::pi;

/// Data sources compute with sizes that others told them; a share below nothing is no share.
double soundValue(double value)
{
    return std::isfinite(value) && value > 0 ? value : 0;
}

} // namespace

PieChart::PieChart(QWidget *parent) : BackgroundView(parent)
{
    setBackgroundColor(Qt::transparent);
    m_updateTimer.setObjectName(QStringLiteral("updateTimer"));
    m_updateTimer.setTimerType(Qt::PreciseTimer);
    m_updateTimer.setInterval(kFrame);
    connect(&m_updateTimer, &QTimer::timeout, this, &PieChart::updateTimerFired);
    followSize();
    installPieChartAccessibility();
}

PieChart::PieChart(const QRect &frame, QWidget *parent) : PieChart(parent)
{
    setGeometry(frame);
    followSize();
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

double PieChart::pieRadius() const
{
    return m_pieRadius.value_or(std::min(width() * 0.5, height() * 0.5));
}

void PieChart::setPieRadius(double radius)
{
    m_pieRadius = radius;
    refreshSliceLayers(LayerState::Presentation);
}

double PieChart::infoRadius() const
{
    return m_infoRadius.value_or(std::min(width() * 0.5, height() * 0.5) * 0.5);
}

void PieChart::setInfoRadius(double radius)
{
    m_infoRadius = radius;
    refreshSliceLayers(LayerState::Presentation);
}

void PieChart::setCenter(QPointF center)
{
    m_hasOwnCenter = true;
    BackgroundView::setCenter(center);
    refreshSliceLayers(LayerState::Presentation);
}

void PieChart::followSize()
{
    if (!m_hasOwnCenter)
        BackgroundView::setCenter({width() * 0.5, height() * 0.5});
    refreshSliceLayers(LayerState::Presentation);
}

void PieChart::reloadData()
{
    if (!dataSource())
        return;
    const Reading reading = readSlices();
    const bool isNothing = reading.values.empty() || reading.sum <= 0;
    if (isNothing && !m_sliceLayers.empty())
        collapse();
    else
        layOut(reading);
    commitAnimations();
    updateFocusPolicy();
    announceSliceState(*this, m_focusedSlice);
}

PieChart::Reading PieChart::readSlices()
{
    Reading reading;
    const int count = dataSource()->numberOfSlicesInPieChart(*this);
    for (int i = 0; i < count; ++i) {
        reading.infos.push_back(dataSource()->infoForSliceAtIndex(*this, i));
        reading.values.push_back(soundValue(dataSource()->valueForSliceAtIndex(*this, i)));
        reading.sum += reading.values.back();
    }
    return reading;
}

void PieChart::collapse()
{
    const Arc nothing{m_startPieAngle, m_startPieAngle};
    for (const auto &layer : m_sliceLayers) {
        updateInfoForLayer(*layer, nullptr);
        animateSlice(*layer, nothing, nothing);
    }
}

void PieChart::layOut(const Reading &reading)
{
    SliceReload reload(m_sliceLayers, reading.values, [this] { return createSliceLayer(); });
    double offset = 0;
    for (std::size_t i = 0; i < reading.values.size(); ++i) {
        const double share = reading.sum != 0 ? reading.values[i] / reading.sum : 0;
        const double endOffset = offset + share * kFullTurn;
        SliceLayer &layer = reload.layerForSlice(i);
        layer.setIndex(static_cast<int>(i));
        layer.setValue(reading.values[i]);
        layer.setPercentage(share);
        setLooks(layer);
        const Arc arc{m_startPieAngle + offset, m_startPieAngle + endOffset};
        animateSlice(layer, reload.isFreshStart() ? Arc{m_startPieAngle, m_startPieAngle} : arc,
                     arc);
        updateInfoForLayer(layer, reading.infos[i]);
        offset = endOffset;
    }
    removeSlices(reload.spare());
    if (m_didLoad)
        reloadGradients();
}

void PieChart::setLooks(SliceLayer &layer)
{
    if (m_didLoad)
        return;
    layer.setFillColor(colorForSlice(layer.index()));
    if (layer.gradientLayer())
        layer.gradientLayer()->setColors(std::nullopt);
    updateLayer(layer);
}

void PieChart::animateSlice(SliceLayer &layer, Arc from, Arc to)
{
    layer.createArcAnimationForKey(ArcKey::StartAngle, from.start, to.start, *this);
    layer.createArcAnimationForKey(ArcKey::EndAngle, from.end, to.end, *this);
}

void PieChart::removeSlices(const SliceLayers &layers)
{
    for (const auto &layer : layers) {
        updateLayer(*layer);
        layer->setFillColor(backgroundColor());
        layer->infoLayer()->setHidden(true);
        layer->removeAllAnimations();
        std::erase(m_sliceLayers, layer);
    }
}

std::shared_ptr<SliceLayer> PieChart::createSliceLayer()
{
    auto slice = std::make_shared<SliceLayer>();
    auto label = std::make_unique<InfoLayer>(
        [chart = QPointer<PieChart>(this), weakSlice = std::weak_ptr<SliceLayer>(slice)] {
            if (const auto changed = weakSlice.lock(); chart && changed)
                chart->labelChanged(*changed);
        });
    const QPointF middle = plane().fromWidget(center());
    label->setPosition({static_cast<int>(middle.x() + infoRadius()), static_cast<int>(middle.y())});
    slice->setInfoLayer(std::move(label));
    return slice;
}

void PieChart::labelChanged(const SliceLayer &layer)
{
    updateLayer(layer);
    announceSliceName(*this, layer.index());
}

void PieChart::updateInfoForLayer(SliceLayer &layer, std::shared_ptr<Info> info)
{
    layer.infoLayer()->setInfo(std::move(info));
}

QColor PieChart::colorForSlice(int index)
{
    const auto color =
        dataSource() ? dataSource()->colorForSliceAtIndex(*this, index) : std::optional<QColor>();
    return color.value_or(defaultColor(index));
}

QColor PieChart::defaultColor(int index)
{
    const double hue = (index / 8 % 20) / 20.0 + 0.02;
    const double saturation = (index % 8 + 3) / 10.0;
    return QColor::fromHsvF(static_cast<float>(hue), static_cast<float>(saturation), 0.91F);
}

void PieChart::reloadGradients()
{
    for (const auto &layer : m_sliceLayers) {
        const QColor primary = colorForSlice(layer->index());
        const auto secondary =
            dataSource() ? dataSource()->secondaryColorForSliceAtIndex(*this, layer->index())
                         : std::optional<QColor>();
        const GradientLayer::Colors colors{primary, secondary.value_or(primary)};
        GradientLayer &gradient = layer->madeGradientLayer();
        if (gradient.colors() == colors)
            continue;
        gradient.setColors(colors);
        updateLayer(*layer);
    }
}

void PieChart::animateOut()
{
    destoryTrackingArea();
    setDrawShadow(false);
    for (const auto &layer : m_sliceLayers) {
        layer->setFillColor(dataSource() ? dataSource()->colorForSliceAtIndex(*this, layer->index())
                                         : std::nullopt);
        if (layer->gradientLayer())
            layer->gradientLayer()->setColors(std::nullopt);
        updateLayer(*layer);
        animateSlice(*layer, {layer->startAngle(), layer->endAngle()},
                     {m_startPieAngle, m_startPieAngle});
    }
    commitAnimations();
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
