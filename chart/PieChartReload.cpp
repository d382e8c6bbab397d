// How the chart turns what its data source says into slices that move.

#include "chart/PieChart.h"
#include "chart/PieChartAccessible.h"
#include "chart/SliceReload.h"

#include <QPointer>
#include <cmath>

namespace {

constexpr double kFullTurn = 2 * std::numbers::pi;
constexpr float kDefaultBrightness = 0.91F;

/// Data sources compute with sizes that others told them; a share below nothing is no share.
double soundValue(double value)
{
    return std::isfinite(value) && value > 0 ? value : 0;
}

} // namespace

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
        },
        m_sizeQueue);
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
    return QColor::fromHsvF(static_cast<float>(hue), static_cast<float>(saturation),
                            kDefaultBrightness);
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
