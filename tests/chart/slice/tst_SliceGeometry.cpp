#include "chart/slice/ChartPlane.h"
#include "chart/slice/SliceGeometry.h"
#include "tests/support/run/TestMain.h"

#include <cmath>
#include <numbers>

using std::numbers::pi;

class TestSliceGeometry final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesTheLabelInTheMiddleOfTheArc_data();
    void placesTheLabelInTheMiddleOfTheArc();
    void coversItsArcAndNothingElse_data();
    void coversItsArcAndNothingElse();
    void goesFromTheCentreAlongTheArcAndBack();
    void hasShortLinesOnly();
    void isEmptyWhenItEndsAHairBeforeItsStart();
    void coversTheWholeDiscAtAFullTurn();
    void isFilledByTheNonZeroRule();
    void liesUpsideDownInAWidget();
};

void TestSliceGeometry::placesTheLabelInTheMiddleOfTheArc_data()
{
    QTest::addColumn<QPointF>("center");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::addColumn<QPoint>("point");
    const QPointF middle(200.3, 150.3);
    QTest::newRow("upwards") << middle << 0.0 << pi << QPoint(200, 225);
    QTest::newRow("left") << middle << pi / 2 << 1.5 * pi << QPoint(125, 150);
    QTest::newRow("up left") << middle << pi / 2 << pi << QPoint(147, 203);
    QTest::newRow("down right") << middle << 1.5 * pi << 2 * pi << QPoint(253, 97);
    QTest::newRow("beyond a full turn") << middle << 1.5 * pi << 2.5 * pi << QPoint(275, 150);
    QTest::newRow("no arc") << middle << 1.0 << 1.0 << QPoint(240, 213);
    // Cut toward zero, not down: -53.03 becomes -53.
    QTest::newRow("below zero") << QPointF(0, 0) << pi << 1.5 * pi << QPoint(-53, -53);
}

void TestSliceGeometry::placesTheLabelInTheMiddleOfTheArc()
{
    QFETCH(QPointF, center);
    QFETCH(double, start);
    QFETCH(double, end);
    QFETCH(QPoint, point);
    QCOMPARE((SliceGeometry{center, 150, start, end}.labelPoint(75)), point);
}

void TestSliceGeometry::coversItsArcAndNothingElse_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::newRow("first quarter") << 0.0 << pi / 2;
    QTest::newRow("across the top") << pi / 3 << 2.0;
    QTest::newRow("across three o'clock") << 1.5 * pi << 2.5 * pi;
    QTest::newRow("a sliver") << 1.0 << 1.05;
    QTest::newRow("most of the disc") << pi / 2 << 2.4 * pi;
    QTest::newRow("nothing") << 2.0 << 2.0;
}

void TestSliceGeometry::coversItsArcAndNothingElse()
{
    QFETCH(double, start);
    QFETCH(double, end);
    const SliceGeometry geometry{{200, 150}, 100, start, end};
    const QPainterPath path = geometry.createArcPath();
    for (double angle = 0.013; angle < 2 * pi; angle += 0.05) {
        const double beyondStart = std::fmod(angle - start + 4 * pi, 2 * pi);
        for (const double distance : {3.0, 50.0, 99.5, 100.5, 140.0}) {
            const QPointF point =
                geometry.center + QPointF(std::cos(angle), std::sin(angle)) * distance;
            QCOMPARE(path.contains(point), beyondStart < end - start && distance < 100);
        }
    }
}

void TestSliceGeometry::goesFromTheCentreAlongTheArcAndBack()
{
    const QPainterPath path = SliceGeometry{{200, 150}, 100, 0, pi / 2}.createArcPath();
    QCOMPARE(QPointF(path.elementAt(0)), QPointF(200, 150));
    QVERIFY(path.contains(QPointF(299, 151)));
    QCOMPARE(path.currentPosition(), QPointF(200, 150));
    QCOMPARE(path.boundingRect(), QRectF(200, 150, 100, 100));
}

void TestSliceGeometry::hasShortLinesOnly()
{
    const QPainterPath path = SliceGeometry{{350, 350}, 350, 0.3, 1.1}.createArcPath();
    int lines = 0;
    for (int i = 1; i < path.elementCount(); ++i) {
        const QPointF begin = path.elementAt(i - 1);
        const QPointF end = path.elementAt(i);
        if (!path.elementAt(i).isLineTo())
            continue;
        QVERIFY(QLineF(begin, end).length() <= 12);
        ++lines;
    }
    QVERIFY(lines >= 2 * 350 / 12);
}

void TestSliceGeometry::isEmptyWhenItEndsAHairBeforeItsStart()
{
    const SliceGeometry geometry{{200, 150}, 100, 1, std::nextafter(1, 0)};
    QCOMPARE(geometry.sweep(), 0.0);
    QVERIFY(geometry.createArcPath().boundingRect().width() < 100); // a line, no disc
}

void TestSliceGeometry::coversTheWholeDiscAtAFullTurn()
{
    const SliceGeometry geometry{{200, 150}, 100, pi / 2, pi / 2 + 7};
    QCOMPARE(geometry.sweep(), 2 * pi);
    QCOMPARE(geometry.createArcPath().boundingRect(), QRectF(100, 50, 200, 200));
}

void TestSliceGeometry::isFilledByTheNonZeroRule()
{
    QCOMPARE(SliceGeometry().createArcPath().fillRule(), Qt::WindingFill);
}

void TestSliceGeometry::liesUpsideDownInAWidget()
{
    const ChartPlane plane(300);
    QCOMPARE(plane.toWidget(QPointF(10, 280)), QPointF(10, 20));
    QCOMPARE(plane.fromWidget(QPointF(10, 20)), QPointF(10, 280));
    QCOMPARE(plane.toWidget(QRectF(10, 280, 30, 5)), QRectF(10, 15, 30, 5));
    QCOMPARE(plane.fromWidget(QRectF(10, 15, 30, 5)), QRectF(10, 280, 30, 5));
    QCOMPARE(plane.transform().map(QPointF(10, 280)), QPointF(10, 20));
}

VANTOR_TEST_MAIN(TestSliceGeometry)
#include "tst_SliceGeometry.moc"
