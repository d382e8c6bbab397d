#include "slices/page/SliceHoverButtons.h"

#include "chart/PieChart.h"
#include "widgets/ImageButton.h"

#include <cmath>
#include <numbers>

namespace {

constexpr int kButtonSize = 25;
constexpr int kInset = 26;         ///< from the pie's edge to the ring of buttons
constexpr double kOffset = 12;     ///< half a button, so that its middle lies on the ring
constexpr double kInfoLead = 0.08; ///< radians before the slice's end
constexpr double kRevealLead = 0.21;

ImageButton *madeButton(PieChart &chart, const QString &image, const QString &accessibleName)
{
    auto *button = new ImageButton(&chart);
    button->setImageName(image);
    button->setAlternateImageName(image + QStringLiteral("Pressed"));
    button->setAccessibleName(accessibleName);
    button->setToolTip(accessibleName);
    button->resize(kButtonSize, kButtonSize);
    button->hide();
    return button;
}

void place(ImageButton &button, const PieChart &chart, double angle)
{
    button.move(hoverButtonOrigin(chart, angle).toPoint());
    button.show();
}

} // namespace

QPointF hoverButtonOrigin(const PieChart &chart, double angle)
{
    const double radius = std::trunc(chart.pieRadius() - kInset);
    const QPointF middle = QRectF(chart.rect()).center();
    // Calculated with y upwards and the origin in the lower left corner, then flipped.
    const double x = (std::cos(angle) - 1) * kOffset + radius * std::cos(angle) + middle.x();
    const double y = (std::sin(angle) - 1) * kOffset + radius * std::sin(angle) + middle.y();
    return {x, chart.height() - y - kButtonSize};
}

SliceHoverButtons::SliceHoverButtons(PieChart &chart)
    : QObject(&chart),
      m_chart(chart),
      m_infoButton(madeButton(chart, QStringLiteral("infoButton"), tr("About this slice"))),
      m_showInFinderButton(
          madeButton(chart, QStringLiteral("showInFinderButton"), tr("Show in the file manager")))
{
}

void SliceHoverButtons::placeOnSlice(int index, int sliceCount, RevealOffer offer)
{
    const double end = (index + 1.0) / sliceCount * 2 * std::numbers::pi + std::numbers::pi / 2;
    place(*m_infoButton, m_chart, end - kInfoLead);
    if (offer == RevealOffer::Yes)
        place(*m_showInFinderButton, m_chart, end - kRevealLead);
}

void SliceHoverButtons::hide()
{
    m_infoButton->hide();
    m_showInFinderButton->hide();
}
