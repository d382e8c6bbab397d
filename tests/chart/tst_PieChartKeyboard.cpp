#include "tests/chart/FakeSlices.h"
#include "tests/support/run/GuiTestMain.h"

class TestPieChartKeyboard final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isReachedOnlyWhereASliceCanBeChosen();
    void showsItsRingWhenReachedByKeyboardAlone();
    void movesTheRingWithTheArrows();
    void goesToTheEndsWithHomeAndEnd();
    void skipsSlicesThatCannotBeChosen();
    void choosesWithSpaceAndReturn();
    void leavesOtherKeysToOthers();
    void countsTheRingAsHovering();
    void goesOnFromAClickedSlice();
    void forgetsASliceThatIsGone();

private:
    static void showWithFocus(HeldChart &held, Qt::FocusReason reason);
};

void TestPieChartKeyboard::showWithFocus(HeldChart &held, Qt::FocusReason reason)
{
    held.window.show();
    held.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&held.window));
    held.chart.clearFocus(); // the window may have given it to the chart already
    held.chart.setFocus(reason);
    QVERIFY(held.chart.hasFocus());
}

void TestPieChartKeyboard::isReachedOnlyWhereASliceCanBeChosen()
{
    HeldChart held({1, 1});
    QCOMPARE(held.chart.focusPolicy(), Qt::NoFocus);
    held.page.selectable = {1};
    held.chart.reloadData();
    QCOMPARE(held.chart.focusPolicy(), Qt::StrongFocus);
    held.chart.setDelegate(nullptr);
    QCOMPARE(held.chart.focusPolicy(), Qt::NoFocus);
}

void TestPieChartKeyboard::showsItsRingWhenReachedByKeyboardAlone()
{
    HeldChart held;
    held.page.setValues({1, 1, 1, 1});
    held.page.selectable = {0, 1, 2, 3};
    held.chart.reloadData();
    held.settle();
    const QImage without = held.picture();
    showWithFocus(held, Qt::MouseFocusReason);
    QCOMPARE(held.picture(), without);
    held.chart.clearFocus();
    held.chart.setFocus(Qt::TabFocusReason);
    QCOMPARE(held.chart.interaction().focusedSlice(), 0);
    const QImage with = held.picture();
    QVERIFY(with != without);
    // Along the inside of the first slice's edge, up from the centre, and nowhere else.
    QCOMPARE(with.pixelColor(197, 60), QColor(Qt::white));
    QCOMPARE(with.pixelColor(203, 60), without.pixelColor(203, 60));
    QCOMPARE(with.pixelColor(150, 100), without.pixelColor(150, 100));
    held.chart.clearFocus();
    QCOMPARE(held.picture(), without);
}

void TestPieChartKeyboard::movesTheRingWithTheArrows()
{
    HeldChart held({1, 1, 1, 1});
    held.page.selectable = {0, 1, 2, 3};
    held.chart.reloadData();
    held.settle();
    showWithFocus(held, Qt::TabFocusReason);
    const std::pair<Qt::Key, int> moves[] = {{Qt::Key_Down, 1}, {Qt::Key_Right, 2},
                                             {Qt::Key_Up, 3},   {Qt::Key_Up, 3},
                                             {Qt::Key_Left, 0}, {Qt::Key_Left, 0}};
    for (const auto &[key, slice] : moves) {
        QTest::keyClick(&held.chart, key);
        QCOMPARE(held.chart.interaction().focusedSlice(), slice);
    }
}

void TestPieChartKeyboard::goesToTheEndsWithHomeAndEnd()
{
    HeldChart held({1, 1, 1, 1});
    held.page.selectable = {0, 1, 2};
    held.chart.reloadData();
    held.settle();
    showWithFocus(held, Qt::TabFocusReason);
    QTest::keyClick(&held.chart, Qt::Key_End);
    QCOMPARE(held.chart.interaction().focusedSlice(), 2);
    QTest::keyClick(&held.chart, Qt::Key_Home);
    QCOMPARE(held.chart.interaction().focusedSlice(), 0);
}

void TestPieChartKeyboard::skipsSlicesThatCannotBeChosen()
{
    HeldChart held({2, 1, 1, 1, 2});
    held.page.selectable = {1, 2, 3};
    held.chart.reloadData();
    held.settle();
    showWithFocus(held, Qt::TabFocusReason);
    QCOMPARE(held.chart.interaction().focusedSlice(), 1);
    QTest::keyClick(&held.chart, Qt::Key_Right);
    QTest::keyClick(&held.chart, Qt::Key_Right);
    QCOMPARE(held.chart.interaction().focusedSlice(), 3);
    QTest::keyClick(&held.chart, Qt::Key_Right);
    QCOMPARE(held.chart.interaction().focusedSlice(), 3);
}

void TestPieChartKeyboard::choosesWithSpaceAndReturn()
{
    HeldChart held({1, 1, 1, 1});
    held.page.selectable = {0, 1, 2, 3};
    held.chart.reloadData();
    held.settle();
    showWithFocus(held, Qt::TabFocusReason);
    QTest::keyClick(&held.chart, Qt::Key_Space);
    QTest::keyClick(&held.chart, Qt::Key_Down);
    QTest::keyClick(&held.chart, Qt::Key_Return);
    QTest::keyClick(&held.chart, Qt::Key_Enter);
    QCOMPARE(held.page.selected, (QList<int>{0, 1, 1}));
    held.page.selectable = {};
    QTest::keyClick(&held.chart, Qt::Key_Space);
    QCOMPARE(held.page.selected.size(), 3);
}

void TestPieChartKeyboard::leavesOtherKeysToOthers()
{
    HeldChart held({1, 1});
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(&held.chart, &escape);
    QVERIFY(!escape.isAccepted());
    QKeyEvent space(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
    QCoreApplication::sendEvent(&held.chart, &space);
    QVERIFY(!space.isAccepted());
}

void TestPieChartKeyboard::countsTheRingAsHovering()
{
    HeldChart held({1, 1, 1, 1});
    held.page.selectable = {0, 1, 2, 3};
    held.chart.reloadData();
    showWithFocus(held, Qt::TabFocusReason);
    QTest::keyClick(&held.chart, Qt::Key_Down);
    QCOMPARE(held.page.hovered, QList<int>()); // it moves: the page gets no call
    held.settle();
    held.page.hovered.clear();
    QTest::keyClick(&held.chart, Qt::Key_Right);
    QCOMPARE(held.page.hovered, QList<int>{2});
}

void TestPieChartKeyboard::goesOnFromAClickedSlice()
{
    HeldChart held({1, 1, 1, 1});
    held.page.selectable = {0, 1, 2, 3};
    held.chart.reloadData();
    held.settle();
    showWithFocus(held, Qt::MouseFocusReason);
    QTest::mouseClick(&held.chart, Qt::LeftButton, {}, {250, 200});
    QCOMPARE(held.chart.interaction().focusedSlice(), 2);
    QTest::keyClick(&held.chart, Qt::Key_Up);
    QCOMPARE(held.chart.interaction().focusedSlice(), 3);
}

void TestPieChartKeyboard::forgetsASliceThatIsGone()
{
    HeldChart held({1, 1, 1, 1});
    held.page.selectable = {0, 1, 2, 3};
    held.chart.reloadData();
    held.settle();
    showWithFocus(held, Qt::TabFocusReason);
    QTest::keyClick(&held.chart, Qt::Key_End);
    held.page.setValues({1, 1});
    held.chart.reloadData();
    QCOMPARE(held.chart.interaction().focusedSlice(), -1);
    held.picture();
}

VANTOR_GUI_TEST_MAIN(TestPieChartKeyboard)
#include "tst_PieChartKeyboard.moc"
