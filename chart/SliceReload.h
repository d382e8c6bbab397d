#pragma once

#include "chart/slice/SliceLayer.h"

#include <functional>
#include <vector>

/// Decides, while a pie reloads, which slice shows which of the new values. It uses existing slices
/// again where that makes the movement smaller, adds new ones, and leaves spare ones over. Lives
/// for one reload.
class SliceReload final
{
public:
    using Maker = std::function<std::shared_ptr<SliceLayer>()>;

    /// Changes the pie's own list.
    SliceReload(SliceLayers &layers, std::vector<double> values, Maker maker);

    /// Whether the pie was empty, so that all slices grow out of the start angle.
    bool isFreshStart() const { return m_snapshot.empty() && !m_values.empty(); }

    /// The slice for a value. Call it for 0, 1, 2 and so on, once each.
    SliceLayer &layerForSlice(std::size_t index);

    /// The old slices that are not used yet.
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
    /// How many slices must still be added; a negative number tells how many must go.
    std::ptrdiff_t m_difference;
};
