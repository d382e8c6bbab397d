#include "slices/page/SliceHoverButtons.h"

#include "chart/PieChart.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/ImageButton.h"

#include <numbers>

class TestSliceHoverButtons final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void liesJustInsideTheEdge_data();
    void liesJustInsideTheEdge();
    void placesBothBeforeTheEndOfTheSlice();
    void startsHiddenWithoutSlice();
    void offersToRevealOnDemand();
};

void TestSliceHoverButtons::liesJustInsideTheEdge_data()
{
    // On a chart of 400 points: the ring has 174, the chart's middle is at 200, a button has 25.
    QTest::addColumn<double>("angle");
    QTest::addColumn<QPointF>("origin");
    QTest::addRow("right") << 0.0 << QPointF(374, 400 - 188 - 25);
    QTest::addRow("top") << std::numbers::pi / 2 << QPointF(188, 400 - 374 - 25);
    QTest::addRow("left") << std::numbers::pi << QPointF(2, 400 - 188 - 25);
    QTest::addRow("bottom") << 3 * std::numbers::pi / 2 << QPointF(188, 400 - 2 - 25);
}

void TestSliceHoverButtons::liesJustInsideTheEdge()
{
    QFETCH(double, angle);
    QFETCH(QPointF, origin);
    PieChart chart(QRect(0, 0, 400, 400));
    const QPointF found = hoverButtonOrigin(chart, angle);
    QVERIFY2(std::abs(found.x() - origin.x()) < 0.01 && std::abs(found.y() - origin.y()) < 0.01,
             qPrintable(QStringLiteral("%1, %2").arg(found.x()).arg(found.y())));
}

void TestSliceHoverButtons::placesBothBeforeTheEndOfTheSlice()
{
    // The second of eight slices ends a quarter beyond the top, which is at the left.
    PieChart chart(QRect(0, 0, 400, 400));
    SliceHoverButtons buttons(chart);
    buttons.placeOnSlice(1, 8, RevealOffer::Yes);
    const double end = std::numbers::pi;
    QCOMPARE(buttons.infoButton()->pos(), hoverButtonOrigin(chart, end - 0.08).toPoint());
    QCOMPARE(buttons.showInFinderButton()->pos(), hoverButtonOrigin(chart, end - 0.21).toPoint());
}

void TestSliceHoverButtons::startsHiddenWithoutSlice()
{
    PieChart chart(QRect(0, 0, 400, 400));
    const SliceHoverButtons buttons(chart);
    QCOMPARE(buttons.currentHoverIndex(), -1);
    QVERIFY(buttons.infoButton()->isHidden());
    QVERIFY(buttons.showInFinderButton()->isHidden());
    QCOMPARE(buttons.infoButton()->size(), QSize(25, 25));
}

void TestSliceHoverButtons::offersToRevealOnDemand()
{
    PieChart chart(QRect(0, 0, 400, 400));
    SliceHoverButtons buttons(chart);
    buttons.placeOnSlice(0, 8, RevealOffer::No);
    QVERIFY(!buttons.infoButton()->isHidden());
    QVERIFY(buttons.showInFinderButton()->isHidden());
    buttons.placeOnSlice(0, 8, RevealOffer::Yes);
    QVERIFY(!buttons.showInFinderButton()->isHidden());
    QVERIFY(buttons.infoButton()->pos() != buttons.showInFinderButton()->pos());
    buttons.hide();
    QVERIFY(buttons.infoButton()->isHidden() && buttons.showInFinderButton()->isHidden());
}

VANTOR_GUI_TEST_MAIN(TestSliceHoverButtons)
#include "tst_SliceHoverButtons.moc"
