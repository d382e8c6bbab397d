#pragma once

#include "chart/PieChart.h"
#include "slices/record/Info.h"

#include <QImage>
#include <QSet>

/// What a test's page knows about one slice.
struct FakeSlice
{
    double value = 1;
    std::optional<QColor> color;
    std::optional<QColor> secondaryColor;
    std::shared_ptr<Info> info;
    std::optional<QString> accessibleName;
};

/// Takes the part of the page: answers the chart from a list and records the chart's calls.
class FakeSlices final : public PieChartDataSource, public PieChartDelegate
{
public:
    std::vector<FakeSlice> slices;
    QSet<int> selectable;
    std::function<void(int)> whenSelected;

    QList<int> selected;
    QList<int> hovered;
    int highestIndexAsked = -1;

    void setValues(const std::vector<double> &values)
    {
        slices.resize(values.size());
        for (std::size_t i = 0; i < values.size(); ++i)
            slices[i].value = values[i];
    }

    int numberOfSlicesInPieChart(PieChart &) override { return static_cast<int>(slices.size()); }

    std::shared_ptr<Info> infoForSliceAtIndex(PieChart &, int index) override
    {
        return at(index).info;
    }
    double valueForSliceAtIndex(PieChart &, int index) override { return at(index).value; }

    std::optional<QColor> colorForSliceAtIndex(PieChart &, int index) override
    {
        return at(index).color;
    }
    std::optional<QColor> secondaryColorForSliceAtIndex(PieChart &, int index) override
    {
        return at(index).secondaryColor;
    }
    std::optional<QString> accessibleNameForSliceAtIndex(PieChart &, int index) override
    {
        return at(index).accessibleName;
    }

    void didSelectSliceAtIndex(PieChart &, int index) override
    {
        selected << index;
        if (whenSelected)
            whenSelected(index);
    }
    void didHoverOverSliceAtIndex(PieChart &, int index) override { hovered << index; }
    bool canSelectSliceAtIndex(PieChart &, int index) override
    {
        return selectable.contains(index);
    }

private:
    const FakeSlice &at(int index)
    {
        highestIndexAsked = std::max(highestIndexAsked, index);
        return slices.at(static_cast<std::size_t>(index)); // throws when there is no such slice
    }
};

/// A chart of 400 x 300 points with a fake page, and with a clock that the test sets.
class HeldChart final
{
public:
    FakeSlices page;
    MediaTime now{1000};
    QWidget window;
    PieChart chart{QRect(0, 0, 400, 300), &window};

    HeldChart()
    {
        window.resize(400, 300);
        chart.setClock([this] { return now; });
        chart.setDataSource(&page);
        chart.setDelegate(&page);
    }

    explicit HeldChart(const std::vector<double> &values) : HeldChart()
    {
        page.setValues(values);
        chart.reloadData();
    }

    void pass(double seconds)
    {
        now += MediaTime(seconds);
        chart.updateTimerFired();
    }
    void settle() { pass(chart.animationSpeed()); }

    SliceLayer &layer(std::size_t place) { return *chart.sliceLayers().at(place); }

    /// What is on screen, at a scale, on white.
    QImage picture(double scale = 1)
    {
        QImage image(chart.size() * scale, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::white);
        chart.render(&image, {}, {}, QWidget::RenderFlags());
        return image;
    }
};
