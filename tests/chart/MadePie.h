#pragma once

#include "chart/PieView.h"

#include <numbers>

/// A pie of 400 x 300 points without any data source. Its slices have the same size, begin at the
/// top and stand still.
class MadePie final : public PieView
{
public:
    explicit MadePie(int count, QWidget *parent = nullptr) : PieView(parent)
    {
        using std::numbers::pi;
        setGeometry(0, 0, 400, 300);
        for (int i = 0; i < count; ++i) {
            const auto layer = std::make_shared<SliceLayer>();
            layer->setInfoLayer(std::make_unique<InfoLayer>());
            layer->setIndex(i);
            layer->arc().setAngle(ArcKey::StartAngle, pi / 2 + 2 * pi * i / count);
            layer->arc().setAngle(ArcKey::EndAngle, pi / 2 + 2 * pi * (i + 1) / count);
            ownSliceLayers().push_back(layer);
        }
        refreshSliceLayers(LayerState::Model);
    }

    SliceLayer &slice(std::size_t place) { return *sliceLayers().at(place); }
    void removeLast() { ownSliceLayers().pop_back(); }
};
