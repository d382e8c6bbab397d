#include "chart/SliceSource.h"

#include <cmath>

namespace {

constexpr float kDefaultBrightness = 0.91F;

/// Data sources compute with sizes that they got from others; a negative value cannot be a share.
double soundValue(double value)
{
    return std::isfinite(value) && value > 0 ? value : 0;
}

} // namespace

SliceReading SliceSource::read() const
{
    SliceReading reading;
    const int count = get() ? get()->numberOfSlicesInPieChart(m_chart) : 0;
    for (int i = 0; i < count; ++i) {
        reading.infos.push_back(get()->infoForSliceAtIndex(m_chart, i));
        reading.values.push_back(soundValue(get()->valueForSliceAtIndex(m_chart, i)));
        reading.sum += reading.values.back();
    }
    return reading;
}

std::optional<QColor> SliceSource::givenColor(int index) const
{
    return get() ? get()->colorForSliceAtIndex(m_chart, index) : std::nullopt;
}

QColor SliceSource::color(int index) const
{
    return givenColor(index).value_or(defaultColor(index));
}

GradientLayer::Colors SliceSource::gradient(int index) const
{
    const QColor primary = color(index);
    const auto secondary =
        get() ? get()->secondaryColorForSliceAtIndex(m_chart, index) : std::nullopt;
    return {primary, secondary.value_or(primary)};
}

QColor SliceSource::defaultColor(int index)
{
    const double hue = (index / 8 % 20) / 20.0 + 0.02;
    const double saturation = (index % 8 + 3) / 10.0;
    return QColor::fromHsvF(static_cast<float>(hue), static_cast<float>(saturation),
                            kDefaultBrightness);
}
