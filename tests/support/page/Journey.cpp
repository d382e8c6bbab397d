#include "tests/support/page/Journey.h"

#include "app/pages/DiskInfoViewController.h"
#include "chart/PieChart.h"
#include "largefiles/sheet/FileTableCellView.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "platform/look/ViewAlpha.h"
#include "platform/sheet/SheetSlide.h"
#include "prefs/popover/COICOPopoverView.h"
#include "prefs/popover/Popover.h"
#include "prefs/window/ColorWindow.h"
#include "slices/page/SliceHoverButtons.h"
#include "tests/support/page/SheetDriver.h"
#include "widgets/ImageButton.h"
#include "widgets/StartButton.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QTest>
#include <numbers>

namespace {

constexpr int kPatience = 20'000; ///< milliseconds, for a slow machine

bool waitFor(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, kPatience);
}

bool standsStill(ViewController &page)
{
    const auto *chart = page.view()->findChild<PieChart *>();
    return !chart || (!chart->isAnimating() && chart->didLoad());
}

/// Sends the click to the window, as the window system does; the click finds its widget by itself.
void clickInWindow(QWidget &widget, QPoint position)
{
    QTest::mouseClick(widget.window()->windowHandle(), Qt::LeftButton, {},
                      widget.mapTo(widget.window(), position));
}

} // namespace

Journey::Journey(AppDelegate &application) : m_application(application)
{
}

bool Journey::waitForPage(ViewController &page)
{
    return waitFor([&] {
        return controller().currentViewController() == &page && page.view()->isVisible() &&
               alphaValue(*page.view()) == 1 && standsStill(page);
    });
}

bool Journey::clickButton(QWidget &button)
{
    if (!waitFor([&] { return button.isVisible() && button.isEnabled(); }))
        return false;
    clickInWindow(button, button.rect().center());
    return true;
}

bool Journey::chooseHome(const QByteArray &path)
{
    if (!clickButton(*controller().folderSelectPage().homeButton()))
        return false;
    const auto nameEdit = [this] {
        const QWidget *panel = sheetPanel(window());
        return panel ? panel->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")) : nullptr;
    };
    if (!waitFor([&] { return nameEdit() && nameEdit()->isVisible(); }))
        return false;
    nameEdit()->setFocus();
    nameEdit()->selectAll();
    QTest::keyClicks(nameEdit(), QFile::decodeName(path));
    QTest::keyClick(window().windowHandle(), Qt::Key_Return);
    return waitFor([this] { return !hasSheet(window()); });
}

bool Journey::pressStart()
{
    return clickButton(*controller().diskInfoPage().startButton());
}

QPoint Journey::middleOfSlice(int index) const
{
    const PieChart &chart = *controller().freeSpacePage().pieChart();
    const double angle = chart.startPieAngle() + (index + 0.5) / kSliceCount * 2 * std::numbers::pi;
    const QPointF offset(std::cos(angle), -std::sin(angle));
    return (chart.center() + offset * chart.infoRadius()).toPoint();
}

bool Journey::clickSlice(SliceKind kind)
{
    FreeSpaceViewController &page = controller().freeSpacePage();
    const bool wasOn = page.selection().record(kind).isOn();
    tapSlice(kind);
    return waitFor([&] { return page.selection().record(kind).isOn() != wasOn; });
}

void Journey::tapSlice(SliceKind kind)
{
    clickInWindow(*controller().freeSpacePage().pieChart(), middleOfSlice(indexOf(kind)));
}

bool Journey::hoverSlice(SliceKind kind)
{
    FreeSpaceViewController &page = controller().freeSpacePage();
    const PieChart &chart = *page.pieChart();
    // The pie does not look at the pointer while its slices move.
    if (!waitFor([&] { return !chart.isAnimating(); }))
        return false;
    const QPoint position = chart.mapTo(&window(), middleOfSlice(indexOf(kind)));
    // The pointer moves on until the slice reacts. The first step may only take the pointer off a
    // button, or the window system may report another position of the pointer at the same time.
    int step = 0;
    return waitFor([&] {
        const SliceHoverButtons &buttons = page.hover().buttons();
        if (buttons.currentHoverIndex() == indexOf(kind) && buttons.infoButton()->isVisible())
            return true;
        QTest::mouseMove(window().windowHandle(), position + QPoint(step++ % 2, 0));
        return false;
    });
}

Popover *Journey::openPopover()
{
    const auto popover = [this] { return window().findChild<Popover *>(); };
    const auto isShown = [&] {
        return popover() && popover()->isVisible() &&
               alphaValue(*popover()->content().parentWidget()) == 1;
    };
    if (!clickButton(*controller().freeSpacePage().hover().buttons().infoButton()) ||
        !waitFor(isShown))
        return nullptr;
    return popover();
}

bool Journey::waitForMeasures()
{
    return waitFor([this] {
        if (controller().freeSpacePage().homeLayout().kind() == HomeKind::Unknown)
            return false;
        for (const auto &record : controller().freeSpacePage().selection().records()) {
            if (record->fileURLs() && !record->isMeasured())
                return false;
        }
        return true;
    });
}

bool Journey::waitForSheet()
{
    return waitFor([this] {
        const QWidget *panel = sheetPanel(window());
        return panel && panel->isVisible() && !window().findChild<SheetSlide *>();
    });
}

bool Journey::declineTutorial()
{
    const auto box = [this] {
        const QWidget *panel = sheetPanel(window());
        return panel ? panel->findChild<QCheckBox *>() : nullptr;
    };
    if (!waitFor([&] { return box() && box()->isVisible(); }))
        return false;
    QTest::mouseClick(box(), Qt::LeftButton, {}, QPoint(8, box()->height() / 2));
    return pressSheetButton(window(), QStringLiteral("OK"));
}

bool Journey::pressClean(const QString &answer)
{
    return clickButton(*controller().freeSpacePage().startButton()) &&
           pressSheetButton(window(), answer);
}

bool Journey::scanAgain()
{
    return clickButton(*controller().finalPage().scanAgainButton());
}

LargeFilesWindowController &Journey::largeFiles() const
{
    return controller().freeSpacePage().largeFilesWindowController();
}

bool Journey::openLargeFiles()
{
    FreeSpaceViewController &page = controller().freeSpacePage();
    clickInWindow(*page.pieChart(), middleOfSlice(indexOf(SliceKind::LargeFiles)));
    return waitForSheet() && sheetPanel(window()) == largeFiles().window();
}

bool Journey::waitForSearch()
{
    return waitFor([this] { return !largeFiles().search().isRunning(); });
}

bool Journey::clickSizeButton(int row)
{
    const LargeFileList &list = largeFiles().array();
    if (row >= list.rowCount())
        return false;
    QuickLookTableView &table = *largeFiles().tableView();
    const bool wasAdded = list.fileAt(row).isAdded();
    const QRect place = table.visualRect(list.index(row));
    clickInWindow(*table.viewport(), FileTableCellView::addButtonRect(place).center());
    return waitFor([&] { return list.fileAt(row).isAdded() != wasAdded; });
}

bool Journey::pressInLargeFiles(QWidget &button)
{
    return clickButton(button) && waitFor([this] { return !hasSheet(window()); });
}

void Journey::press(Qt::Key key)
{
    // To the window, as the window system does.
    QTest::keyClick(window().windowHandle(), key);
}

QPixmap Journey::picture() const
{
    return window().grab();
}
