#pragma once

#include "chart/slice/SliceLayer.h"

#include <functional>
#include <vector>

/// Decides which of a pie's slices shows which of the new values, while the pie reloads: slices
/// that are there are used again where that makes the smaller movement, new ones are put in and
/// spare ones are left over. Lives for one reload.
class SliceReload final
{
public:
    using Maker = std::function<std::shared_ptr<SliceLayer>()>;

    /// Works on the pie's own list.
    SliceReload(SliceLayers &layers, std::vector<double> values, Maker maker);

    /// Whether the pie was empty, so that all slices grow out of the start angle.
    bool isFreshStart() const { return m_snapshot.empty() && !m_values.empty(); }

    /// The slice for a value. To be asked for 0, 1, 2 and so on, once each.
    SliceLayer &layerForSlice(std::size_t index);

    /// The old slices that were not used so far.
    const SliceLayers &spare() const { return m_spare; }

private:
    SliceLayer &appended();
    SliceLayer &inserted(std::size_t index);
    SliceLayer &movedToTop(std::size_t index);
    SliceLayer &reused(std::size_t index);

    SliceLayers &m_layers;
    std::vector<double> m_values;
    Maker m_maker;
    SliceLayers m_snapshot;
    SliceLayers m_spare;
    /// How many slices are still to be added, less than zero for how many are to go.
    std::ptrdiff_t m_difference;
};
