#include "chart/SliceReload.h"

#include <algorithm>

SliceReload::SliceReload(SliceLayers &layers, std::vector<double> values, Maker maker)
    : m_layers(layers),
      m_values(std::move(values)),
      m_maker(std::move(maker)),
      m_snapshot(layers),
      m_spare(layers),
      m_difference(std::ssize(m_values) - std::ssize(m_snapshot))
{
}

SliceLayer &SliceReload::layerForSlice(std::size_t index)
{
    if (index >= m_snapshot.size())
        return appended();
    if (m_difference == 0 || m_snapshot[index]->value() == m_values[index])
        return reused(index);
    return m_difference > 0 ? inserted(index) : movedToTop(index);
}

SliceLayer &SliceReload::appended()
{
    --m_difference;
    return *m_layers.emplace_back(m_maker());
}

SliceLayer &SliceReload::inserted(std::size_t index)
{
    --m_difference;
    return **m_layers.insert(m_layers.begin() + static_cast<std::ptrdiff_t>(index), m_maker());
}

SliceLayer &SliceReload::movedToTop(std::size_t index)
{
    const std::shared_ptr<SliceLayer> layer = m_snapshot[index];
    // Every round looks at the same slice. So unless its value fits, the loop uses up the whole
    // difference: a reload moves at most one slice because it does not fit.
    do {
        const auto place = std::ranges::find(m_layers, layer);
        std::rotate(place, std::next(place), m_layers.end());
        ++m_difference;
    } while (layer->value() != m_values[index] && m_difference != 0);
    return reused(index);
}

SliceLayer &SliceReload::reused(std::size_t index)
{
    std::erase(m_spare, m_snapshot[index]);
    return *m_snapshot[index];
}
