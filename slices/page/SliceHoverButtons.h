#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>

class ImageButton;
class PieChart;

enum class RevealOffer { No, Yes };

/// Where a hover button's upper left corner lies on the chart, for the slice that ends at an angle:
/// just inside the slice's far edge. `angle` is counted as the chart does: radians,
/// counter-clockwise.
QPointF hoverButtonOrigin(const PieChart &chart, double angle);

/// The two small buttons of the slice under the pointer: one explains the slice, one shows it in
/// the file manager. Made once, they move from slice to slice. Owned by the page; main thread only.
class SliceHoverButtons final : public QObject
{
    Q_OBJECT

public:
    explicit SliceHoverButtons(PieChart &chart);

    static constexpr int kNoSlice = -1;

    /// The slice under the pointer.
    int currentHoverIndex() const { return m_currentHoverIndex; }
    void setCurrentHoverIndex(int index) { m_currentHoverIndex = index; }

    /// Puts the buttons onto this slice of so many equal ones.
    void placeOnSlice(int index, int sliceCount, RevealOffer offer);
    void hide();

    ImageButton *infoButton() const { return m_infoButton; }
    ImageButton *showInFinderButton() const { return m_showInFinderButton; }

private:
    PieChart &m_chart;
    int m_currentHoverIndex = kNoSlice;
    ImageButton *m_infoButton;
    ImageButton *m_showInFinderButton;
};
