#include "app/pages/DiskInfoViewController.h"

#include "app/navigation/PageViews.h"
#include "chart/PieChart.h"
#include "platform/base/ByteCount.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/look/ViewAlpha.h"
#include "slices/record/Info.h"
#include "widgets/ColorView.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

namespace {

constexpr int kSliceOfFreeSpace = 0;
constexpr int kNumberOfSlices = 2;
constexpr QColor kFreeColor(74, 174, 51);
constexpr QColor kUsedColor(21, 106, 202);
constexpr std::chrono::seconds kEntrance{1};

} // namespace

DiskInfoViewController::DiskInfoViewController(const InterfaceLoader &loader,
                                               LabelController::Reader reader, QObject *parent)
    : VNTViewController(loader, parent), m_labelController(nullptr, std::move(reader))
{
}

void DiskInfoViewController::viewDidLoad()
{
    connectOutlets();
    m_pieChart->setDataSource(this);
    m_pieChart->setDelegate(this);
    connect(m_startButton, &StartButton::triggered, this, &DiskInfoViewController::next);
    m_startButton->mainText().setText(tr("Start"));
    setAlphaValue(*m_startButton, 0);
    for (QWidget *subview : directSubviews(*view())) {
        if (subview != m_pieChart)
            setAlphaValue(*subview, 0);
    }
}

void DiskInfoViewController::connectOutlets()
{
    m_pieChart = outlet<PieChart>(*view(), "pieChart");
    m_startButton = outlet<StartButton>(*view(), "startButton");
    connectSizeLabels(m_labelController, *view());
    outlet<ColorView>(*view(), "freeSwatch")->setColor(kFreeColor);
    outlet<ColorView>(*view(), "usedSwatch")->setColor(kUsedColor);
}

void DiskInfoViewController::viewWillAppear(bool)
{
    m_startButton->setEnabled(false);
}

void DiskInfoViewController::viewDidAppear(bool)
{
    m_labelController.reloadData();
    m_pieChart->setDidLoad(false);
    m_pieChart->reloadData();

    setAlphaValue(*m_startButton, 1);
    for (QWidget *subview : directSubviews(*view())) {
        if (subview != m_pieChart)
            animateAlphaValue(*subview, 1, kEntrance);
    }
    m_pieChart->setDrawShadow(true);
    m_startButton->setEnabled(true);
    m_startButton->setFocus(Qt::OtherFocusReason); // Return goes on to the next page
}

void DiskInfoViewController::viewWillDisappear(bool)
{
    m_startButton->setEnabled(false); // a second press must not move on twice
    m_pieChart->animateOut();
}

void DiskInfoViewController::next()
{
    goForward();
}

int DiskInfoViewController::numberOfSlicesInPieChart(PieChart &)
{
    return kNumberOfSlices;
}

double DiskInfoViewController::valueForSliceAtIndex(PieChart &, int index)
{
    const qint64 free = m_labelController.freeSize();
    return static_cast<double>(index == kSliceOfFreeSpace ? free
                                                          : m_labelController.entireSize() - free);
}

std::optional<QColor> DiskInfoViewController::colorForSliceAtIndex(PieChart &, int index)
{
    return index == kSliceOfFreeSpace ? kFreeColor : kUsedColor;
}

std::shared_ptr<Info> DiskInfoViewController::infoForSliceAtIndex(PieChart &, int)
{
    return Info::infoWithName(QString(), std::nullopt);
}

std::optional<QString> DiskInfoViewController::accessibleNameForSliceAtIndex(PieChart &chart,
                                                                             int index)
{
    const QString size =
        stringFromByteCount(static_cast<qint64>(valueForSliceAtIndex(chart, index)));
    return index == kSliceOfFreeSpace ? tr("%1 free").arg(size) : tr("%1 used").arg(size);
}
