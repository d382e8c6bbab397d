#include "chart/PieChart.h"

#include "chart/SliceAnnouncements.h"
#include "chart/SliceReload.h"
#include "platform/base/Log.h"

#include <QPointer>

namespace {

constexpr double kFullTurn = 2 * std::numbers::pi;

} // namespace

PieChart::PieChart(QWidget *parent)
    : PieView(parent), m_interaction(*this, [this](int index) {
          return delegate() != nullptr && delegate()->canSelectSliceAtIndex(*this, index);
      })
{
    connectParts();
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

void PieChart::connectParts()
{
    connect(&m_animation, &PieAnimation::started, &m_interaction,
            &PieInteraction::destoryTrackingArea);
    connect(&m_animation, &PieAnimation::finished, this, &PieChart::standStill);
    connect(&m_interaction, &PieInteraction::selected, this, [this](int index) {
        if (delegate())
            delegate()->didSelectSliceAtIndex(*this, index);
    });
    connect(&m_interaction, &PieInteraction::hovered, this, [this](int index) {
        if (delegate())
            delegate()->didHoverOverSliceAtIndex(*this, index);
    });
    connect(&m_interaction, &PieInteraction::focusMoved, this,
            [this](int index) { announceFocusedSlice(*this, index); });
}

void PieChart::setDelegate(PieChartDelegate *delegate)
{
    m_delegate = delegate;
    m_interaction.updateFocusPolicy();
}

void PieChart::standStill()
{
    m_interaction.installTrackingArea();
    if (!m_didLoad) {
        qCDebug(logChart, "here");
        refreshSliceLayers(LayerState::Model);
        reloadGradients();
    }
    m_didLoad = true;
    qCDebug(logChart, "Animation finished");
    Q_EMIT animationFinished();
}

void PieChart::reloadData()
{
    if (!dataSource())
        return;
    const SliceReading reading = m_source.read();
    const bool isNothing = reading.values.empty() || reading.sum <= 0;
    if (isNothing && !sliceLayers().empty())
        collapse();
    else
        layOut(reading);
    m_animation.commit();
    m_interaction.updateFocusPolicy();
    announceSliceState(*this, m_interaction.focusedSlice());
}

void PieChart::collapse()
{
    const Arc nothing{m_startPieAngle, m_startPieAngle};
    for (const auto &layer : sliceLayers()) {
        updateInfoForLayer(*layer, nullptr);
        m_animation.prepare(*layer, nothing, nothing);
    }
}

void PieChart::layOut(const SliceReading &reading)
{
    SliceReload reload(ownSliceLayers(), reading.values, [this] { return createSliceLayer(); });
    double offset = 0;
    for (std::size_t i = 0; i < reading.values.size(); ++i) {
        const double endOffset = offset + reading.share(i) * kFullTurn;
        SliceLayer &layer = reload.layerForSlice(i);
        layer.setIndex(static_cast<int>(i));
        layer.setValue(reading.values[i]);
        layer.setPercentage(reading.share(i));
        setLooks(layer);
        const Arc arc{m_startPieAngle + offset, m_startPieAngle + endOffset};
        m_animation.prepare(
            layer, reload.isFreshStart() ? Arc{m_startPieAngle, m_startPieAngle} : arc, arc);
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
    layer.setFillColor(m_source.color(layer.index()));
    if (layer.gradientLayer())
        layer.gradientLayer()->setColors(std::nullopt);
    updateLayer(layer);
}

void PieChart::removeSlices(const SliceLayers &layers)
{
    for (const auto &layer : layers) {
        updateLayer(*layer);
        layer->setFillColor(backgroundColor());
        layer->infoLayer()->setHidden(true);
        layer->arc().removeAllAnimations();
        std::erase(ownSliceLayers(), layer);
    }
}

std::shared_ptr<SliceLayer> PieChart::createSliceLayer()
{
    auto slice = std::make_shared<SliceLayer>();
    auto label = std::make_unique<InfoLayer>(
        [chart = QPointer<PieChart>(this), weakSlice = std::weak_ptr<SliceLayer>(slice)] {
            if (const auto changed = weakSlice.lock(); chart && changed) {
                chart->updateLayer(*changed);
                announceSliceName(*chart, changed->index());
            }
        },
        m_sizeQueue);
    const QPointF middle = plane().fromWidget(center());
    label->setPosition({static_cast<int>(middle.x() + infoRadius()), static_cast<int>(middle.y())});
    slice->setInfoLayer(std::move(label));
    return slice;
}

void PieChart::updateInfoForLayer(SliceLayer &layer, std::shared_ptr<Info> info)
{
    layer.infoLayer()->setInfo(std::move(info));
}

void PieChart::reloadGradients()
{
    for (const auto &layer : sliceLayers()) {
        const GradientLayer::Colors colors = m_source.gradient(layer->index());
        GradientLayer &gradient = layer->madeGradientLayer();
        if (gradient.colors() == colors)
            continue;
        gradient.setColors(colors);
        updateLayer(*layer);
    }
}

void PieChart::animateOut()
{
    m_interaction.destoryTrackingArea();
    setDrawShadow(false);
    for (const auto &layer : sliceLayers()) {
        layer->setFillColor(m_source.givenColor(layer->index()));
        if (layer->gradientLayer())
            layer->gradientLayer()->setColors(std::nullopt);
        updateLayer(*layer);
        m_animation.prepare(*layer, {layer->startAngle(), layer->endAngle()},
                            {m_startPieAngle, m_startPieAngle});
    }
    m_animation.commit();
}
