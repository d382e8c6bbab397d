#include "slices/page/SlicesDataSource.h"

#include "slices/page/SliceSelection.h"
#include "slices/record/SliceCatalogue.h"

namespace {

QColor colorOf(const SliceColor &color)
{
    return {color[0], color[1], color[2]};
}

} // namespace

SlicesDataSource::SlicesDataSource(const SliceSelection &selection) : m_selection(selection)
{
}

int SlicesDataSource::numberOfSlicesInPieChart(PieChart &)
{
    return static_cast<int>(m_selection.records().size());
}

double SlicesDataSource::valueForSliceAtIndex(PieChart &, int)
{
    return 1.0; // all slices are equally wide; only the labels show their sizes
}

std::shared_ptr<Info> SlicesDataSource::infoForSliceAtIndex(PieChart &, int index)
{
    return m_selection.records().at(index);
}

std::optional<QColor> SlicesDataSource::colorForSliceAtIndex(PieChart &, int index)
{
    const bool isOn = m_selection.records().at(index)->isOn();
    return colorOf(isOn ? sliceCatalogue()[index % kSliceCount].color : kOffColor);
}

std::optional<QColor> SlicesDataSource::secondaryColorForSliceAtIndex(PieChart &, int index)
{
    const bool isOn = m_selection.records().at(index)->isOn();
    return colorOf(isOn ? sliceCatalogue()[index % kSliceCount].secondaryColor
                        : kOffSecondaryColor);
}
