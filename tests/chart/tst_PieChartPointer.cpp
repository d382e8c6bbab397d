#include "tests/chart/FakeSlices.h"
#include "tests/support/run/GuiTestMain.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <cmath>

using std::numbers::pi;

namespace {

/// Overrides none of the calls.
class DeafDelegate final : public PieChartDelegate
{
};

/// A window that gets the clicks that its chart does not accept.
class HearingWindow final : public QWidget
{
public:
    int clicks = 0;

protected:
    void mousePressEvent(QMouseEvent *) override { ++clicks; }
};

void send(QWidget &widget, QEvent::Type type, QPointF at, Qt::MouseButton button,
          Qt::MouseButtons buttons)
{
    QMouseEvent event(type, at, widget.mapToGlobal(at), button, buttons, {});
    QCoreApplication::sendEvent(&widget, &event);
}

void movePointer(PieChart &chart, QPointF at)
{
    send(chart, QEvent::MouseMove, at, Qt::NoButton, Qt::NoButton);
}

void leave(PieChart &chart)
{
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&chart, &event);
}

void enter(PieChart &chart)
{
    QEnterEvent event({1, 1}, {1, 1}, {1, 1});
    QCoreApplication::sendEvent(&chart, &event);
}

constexpr QPoint kUpLeft(150, 100);
constexpr QPoint kUpRight(250, 100);
constexpr QPoint kOutside(5, 5);

} // namespace

class TestPieChartPointer final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hitsTheSliceUnderAPoint();
    void hitsTheUppermostOfOverlappingSlices();
    void tellsOfClicks();
    void tellsNothingOfClicksOutside();
    void tellsOfClicksWhileItMoves();
    void takesClicksOfTheLeftButtonAlone();
    void mayBeReloadedWhenClicked();
    void tellsNobodyWithoutDelegate();
    void tracksThePointerOnlyWhileItStandsStill();
    void tellsWhereThePointerHovers();
    void tellsThatThePointerLeft();
    void tellsAfterwardsThatThePointerLeftMeanwhile();
    void saysNothingOfAPointerThatCameBack();
    void keepsTheSliceWhileAPopupHasThePointer();
    void ignoresDragging();
    void stopsTrackingWhenTold();
};

void TestPieChartPointer::hitsTheSliceUnderAPoint()
{
    HeldChart held({1, 1});
    QCOMPARE(held.chart.getCurrentSelectedOnLocation(kUpLeft), -1); // nothing has grown
    held.settle();
    QCOMPARE(held.chart.getCurrentSelectedOnLocation(kUpLeft), 0);
    QCOMPARE(held.chart.getCurrentSelectedOnLocation(kUpRight), 1);
    QCOMPARE(held.chart.getCurrentSelectedOnLocation(kOutside), -1);
    QCOMPARE(held.chart.getCurrentSelectedOnLocation({200, -3}), -1);
}

void TestPieChartPointer::hitsTheUppermostOfOverlappingSlices()
{
    HeldChart held({1, 1});
    held.settle();
    SliceGeometry whole = held.layer(1).geometry();
    whole.start = 0;
    whole.end = 2 * pi;
    held.layer(1).setGeometry(whole);
    QCOMPARE(held.chart.getCurrentSelectedOnLocation(kUpLeft), 1);
    held.layer(0).setGeometry(whole);
    held.layer(1).setGeometry({whole.center, 10, 0, 1});
    QCOMPARE(held.chart.getCurrentSelectedOnLocation(kUpRight), 0);
}

void TestPieChartPointer::tellsOfClicks()
{
    HeldChart held({1, 1});
    held.settle();
    QTest::mouseClick(&held.chart, Qt::LeftButton, {}, kUpLeft);
    QTest::mouseClick(&held.chart, Qt::LeftButton, {}, kUpRight);
    QCOMPARE(held.page.selected, (QList<int>{0, 1}));
}

void TestPieChartPointer::tellsNothingOfClicksOutside()
{
    HeldChart held({1, 1});
    held.settle();
    QTest::mouseClick(&held.chart, Qt::LeftButton, {}, kOutside);
    QCOMPARE(held.page.selected, QList<int>());
}

void TestPieChartPointer::tellsOfClicksWhileItMoves()
{
    HeldChart held({1, 1});
    held.pass(0.15);
    QVERIFY(held.chart.isAnimating());
    // The second slice is moving down the left side.
    const SliceGeometry &second = held.layer(1).geometry();
    const double middle = (second.start + second.end) / 2;
    const QPointF at(200 + 100 * std::cos(middle), 150 - 100 * std::sin(middle));
    QTest::mouseClick(&held.chart, Qt::LeftButton, {}, at.toPoint());
    QTest::mouseClick(&held.chart, Qt::LeftButton, {}, kUpRight); // not there yet
    QCOMPARE(held.page.selected, QList<int>{1});
}

void TestPieChartPointer::takesClicksOfTheLeftButtonAlone()
{
    HearingWindow window;
    window.resize(400, 300);
    FakeSlices page;
    page.setValues({1, 1});
    PieChart chart(QRect(0, 0, 400, 300), &window);
    chart.setAnimationSpeed(0);
    chart.setDelegate(&page);
    chart.setDataSource(&page);
    chart.reloadData();
    window.show();
    QTest::mouseClick(&chart, Qt::RightButton, {}, kUpLeft);
    QCOMPARE(page.selected, QList<int>());
    QCOMPARE(window.clicks, 1);
    QTest::mouseClick(&chart, Qt::LeftButton, {}, kUpLeft);
    QTest::mouseClick(&chart, Qt::LeftButton, {}, kOutside);
    QCOMPARE(window.clicks, 1);
}

void TestPieChartPointer::mayBeReloadedWhenClicked()
{
    HeldChart held({1, 1});
    held.settle();
    held.page.whenSelected = [&](int) {
        held.page.setValues({1});
        held.chart.reloadData();
    };
    QTest::mouseClick(&held.chart, Qt::LeftButton, {}, kUpLeft);
    QCOMPARE(held.chart.sliceLayers().size(), std::size_t(1));
}

void TestPieChartPointer::tellsNobodyWithoutDelegate()
{
    HeldChart held({1, 1});
    held.settle();
    DeafDelegate deaf;
    for (PieChartDelegate *delegate :
         {static_cast<PieChartDelegate *>(nullptr), static_cast<PieChartDelegate *>(&deaf)}) {
        held.chart.setDelegate(delegate);
        QTest::mouseClick(&held.chart, Qt::LeftButton, {}, kUpLeft);
        movePointer(held.chart, kUpLeft);
        leave(held.chart);
    }
    QCOMPARE(held.page.selected, QList<int>());
    QCOMPARE(held.page.hovered, QList<int>());
}

void TestPieChartPointer::tracksThePointerOnlyWhileItStandsStill()
{
    HeldChart held;
    QVERIFY(!held.chart.interaction().hasTrackingArea());
    held.page.setValues({1, 1});
    held.chart.reloadData();
    movePointer(held.chart, kUpLeft);
    held.pass(0.7);
    movePointer(held.chart, kUpLeft);
    QCOMPARE(held.page.hovered, QList<int>());
    QVERIFY(!held.chart.hasMouseTracking());
    held.pass(0.05);
    QVERIFY(held.chart.interaction().hasTrackingArea());
    QVERIFY(held.chart.hasMouseTracking());
    movePointer(held.chart, kUpLeft);
    QCOMPARE(held.page.hovered, QList<int>{0});
    held.chart.reloadData();
    QVERIFY(!held.chart.interaction().hasTrackingArea());
    movePointer(held.chart, kUpLeft);
    QCOMPARE(held.page.hovered, QList<int>{0});
}

void TestPieChartPointer::tellsWhereThePointerHovers()
{
    HeldChart held({1, 1});
    held.settle();
    movePointer(held.chart, kUpLeft);
    movePointer(held.chart, kUpLeft);
    movePointer(held.chart, kUpRight);
    movePointer(held.chart, kOutside);
    QCOMPARE(held.page.hovered, (QList<int>{0, 0, 1, -1}));
}

void TestPieChartPointer::tellsThatThePointerLeft()
{
    HeldChart held({1, 1});
    leave(held.chart); // no pointer was reported before
    QCOMPARE(held.page.hovered, QList<int>());
    held.settle();
    held.page.hovered.clear();
    movePointer(held.chart, kUpLeft);
    leave(held.chart);
    QCOMPARE(held.page.hovered, (QList<int>{0, -1}));
}

void TestPieChartPointer::tellsAfterwardsThatThePointerLeftMeanwhile()
{
    HeldChart held({1, 1});
    held.settle();
    movePointer(held.chart, kUpLeft);
    held.chart.reloadData();
    leave(held.chart);
    QCOMPARE(held.page.hovered, QList<int>{0});
    held.settle();
    QCOMPARE(held.page.hovered, (QList<int>{0, -1}));
}

void TestPieChartPointer::saysNothingOfAPointerThatCameBack()
{
    HeldChart held({1, 1});
    held.settle();
    movePointer(held.chart, kUpLeft);
    held.chart.reloadData();
    leave(held.chart);
    enter(held.chart);
    held.settle();
    QCOMPARE(held.page.hovered, QList<int>{0});
}

void TestPieChartPointer::keepsTheSliceWhileAPopupHasThePointer()
{
    HeldChart held({1, 1});
    held.settle();
    held.window.show();
    movePointer(held.chart, kUpLeft);
    QWidget popup(&held.window, Qt::Popup);
    popup.show();
    QCOMPARE(QApplication::activePopupWidget(), &popup);
    leave(held.chart);
    QCOMPARE(held.page.hovered, QList<int>{0});
    popup.close();
    leave(held.chart);
    QCOMPARE(held.page.hovered, (QList<int>{0, -1}));
}

void TestPieChartPointer::ignoresDragging()
{
    HeldChart held({1, 1});
    held.settle();
    send(held.chart, QEvent::MouseMove, kUpLeft, Qt::NoButton, Qt::LeftButton);
    QCOMPARE(held.page.hovered, QList<int>());
}

void TestPieChartPointer::stopsTrackingWhenTold()
{
    HeldChart held({1, 1});
    held.settle();
    held.chart.interaction().destoryTrackingArea();
    held.chart.interaction().destoryTrackingArea();
    QVERIFY(!held.chart.interaction().hasTrackingArea());
    movePointer(held.chart, kUpLeft);
    QCOMPARE(held.page.hovered, QList<int>());
}

VANTOR_GUI_TEST_MAIN(TestPieChartPointer)
#include "tst_PieChartPointer.moc"
