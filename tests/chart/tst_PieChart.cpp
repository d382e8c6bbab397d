#include "tests/chart/FakeSlices.h"
#include "tests/support/run/GuiTestMain.h"

#include <QSignalSpy>
#include <cmath>

using std::numbers::pi;

/// How the chart goes through an animation.
class TestPieChart final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void doesNothingWithoutDataSource();
    void forgetsADataSourceThatIsGone();
    void growsFromTheStartAngle();
    void startsWhereItIsTold();
    void movesItsLabelsWithItsSlices();
    void runsItsTimerWhileItMovesAlone();
    void loadsWhenTheFirstAnimationHasRunToItsEnd();
    void goesOnWhenAnAnimationIsInterrupted();
    void growsAgainFlatWhenTold();
    void showsItsStateAtOnceWithoutDuration();
    void foldsToTheStartAngle();
    void foldsInTheDataSourcesColors();
    void growsAgainAfterFolding();
    void turnsItsShadowOffWhenFolding();
    void endsByItselfInRealTime();
    void endsWithItsOwnerInTheMiddleOfAnAnimation();
};

void TestPieChart::doesNothingWithoutDataSource()
{
    PieChart chart(QRect(0, 0, 400, 300));
    chart.reloadData();
    chart.reloadGradients();
    chart.animateOut();
    chart.updateTimerFired();
    QVERIFY(chart.sliceLayers().empty());
    QVERIFY(!chart.isAnimating());
}

void TestPieChart::forgetsADataSourceThatIsGone()
{
    PieChart chart(QRect(0, 0, 400, 300));
    {
        FakeSlices page;
        page.setValues({1, 1});
        chart.setDataSource(&page);
        chart.setDelegate(&page);
        chart.reloadData();
    }
    QVERIFY(!chart.dataSource());
    QVERIFY(!chart.delegate());
    chart.reloadData();
    chart.animateOut();
    QTest::mouseClick(&chart, Qt::LeftButton, {}, {200, 100});
    QCOMPARE(chart.sliceLayers().size(), std::size_t(2));
}

void TestPieChart::growsFromTheStartAngle()
{
    HeldChart held({1, 1, 2});
    QCOMPARE(held.chart.sliceLayers().size(), std::size_t(3));
    const double arcs[][3] = {{pi / 2, pi, 0.25}, {pi, 1.5 * pi, 0.25}, {1.5 * pi, 2.5 * pi, 0.5}};
    for (std::size_t i = 0; i < 3; ++i) {
        const SliceLayer &layer = held.layer(i);
        QCOMPARE(layer.startAngle(), arcs[i][0]);
        QCOMPARE(layer.endAngle(), arcs[i][1]);
        QCOMPARE(layer.percentage(), arcs[i][2]);
        QCOMPARE(layer.presentationLayer()->startAngle(), pi / 2);
        QCOMPARE(layer.presentationLayer()->endAngle(), pi / 2);
        QCOMPARE(layer.geometry().sweep(), 0.0);
    }
    held.pass(0.375);
    QVERIFY(std::abs(held.layer(2).geometry().end - (pi / 2 + 2 * pi * 0.8024)) < 1e-3);
    QVERIFY(held.chart.isAnimating());
    held.pass(0.375);
    QVERIFY(!held.chart.isAnimating());
    QCOMPARE(held.layer(2).geometry().start, 1.5 * pi);
    QCOMPARE(held.layer(2).geometry().end, 2.5 * pi);
}

void TestPieChart::startsWhereItIsTold()
{
    HeldChart held;
    held.page.setValues({1, 3});
    held.chart.setStartPieAngle(0.25);
    held.chart.reloadData();
    QCOMPARE(held.layer(0).arc().animationForKey(ArcKey::StartAngle)->fromValue(), 0.25);
    QCOMPARE(held.layer(0).endAngle(), 0.25 + pi / 2);
    QCOMPARE(held.layer(1).endAngle(), 0.25 + 2 * pi);
}

void TestPieChart::movesItsLabelsWithItsSlices()
{
    HeldChart held({1, 1});
    QCOMPARE(held.layer(1).infoLayer()->position(), QPoint(200, 225));
    held.pass(0.2);
    const SliceGeometry &geometry = held.layer(1).geometry();
    QVERIFY(geometry.sweep() > 0 && geometry.sweep() < pi);
    QCOMPARE(held.layer(1).infoLayer()->position(), geometry.labelPoint(75));
    held.settle();
    QCOMPARE(held.layer(0).infoLayer()->position(), QPoint(125, 150));
    QCOMPARE(held.layer(1).infoLayer()->position(), held.layer(1).geometry().labelPoint(75));
}

void TestPieChart::runsItsTimerWhileItMovesAlone()
{
    HeldChart held;
    held.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&held.window));
    const auto timer = held.chart.findChild<QTimer *>(QStringLiteral("updateTimer"));
    QVERIFY(timer);
    QVERIFY(!timer->isActive());
    held.page.setValues({1, 2});
    held.chart.reloadData();
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 16);
    held.settle();
    QVERIFY(!timer->isActive());
}

void TestPieChart::loadsWhenTheFirstAnimationHasRunToItsEnd()
{
    HeldChart held({1, 2});
    QSignalSpy finished(&held.chart, &PieChart::animationFinished);
    held.pass(0.7);
    QVERIFY(!held.chart.didLoad());
    QVERIFY(!held.layer(0).gradientLayer());
    QCOMPARE(finished.count(), 0);
    held.pass(0.05);
    QVERIFY(held.chart.didLoad());
    QVERIFY(held.layer(0).gradientLayer());
    QVERIFY(held.layer(1).gradientLayer());
    QVERIFY(held.chart.interaction().hasTrackingArea());
    QCOMPARE(finished.count(), 1);
}

void TestPieChart::goesOnWhenAnAnimationIsInterrupted()
{
    HeldChart held({1, 1, 2});
    QSignalSpy finished(&held.chart, &PieChart::animationFinished);
    held.pass(0.3);
    std::vector<SliceGeometry> shown;
    for (const auto &layer : held.chart.sliceLayers())
        shown.push_back(layer->geometry());

    held.page.setValues({5, 1, 1});
    held.chart.reloadData();
    for (std::size_t i = 0; i < 3; ++i)
        QCOMPARE(held.layer(i).geometry(), shown[i]); // no jump
    held.pass(0.001);
    for (std::size_t i = 0; i < 3; ++i)
        QVERIFY(std::abs(held.layer(i).geometry().end - shown[i].end) < 0.05);
    held.pass(0.5); // the first animation would be over, but it does not count
    QCOMPARE(finished.count(), 0);
    QVERIFY(!held.chart.didLoad());
    held.pass(0.25);
    QCOMPARE(finished.count(), 1);
    QVERIFY(std::abs(held.layer(0).geometry().sweep() - 2 * pi * 5 / 7) < 1e-9);
}

void TestPieChart::growsAgainFlatWhenTold()
{
    HeldChart held({1, 2});
    held.page.slices[0].color = Qt::red;
    held.settle();
    held.chart.setDidLoad(false);
    held.chart.reloadData();
    QCOMPARE(held.layer(0).brush(), QBrush(Qt::red));
    QVERIFY(!held.layer(0).gradientLayer()->colors());
    held.settle();
    QVERIFY(held.layer(0).gradientLayer()->colors());
    QVERIFY(held.chart.didLoad());
}

void TestPieChart::showsItsStateAtOnceWithoutDuration()
{
    HeldChart held;
    QSignalSpy finished(&held.chart, &PieChart::animationFinished);
    held.chart.setAnimationSpeed(0);
    held.page.setValues({1, 1});
    held.chart.reloadData();
    QVERIFY(!held.chart.isAnimating());
    QVERIFY(held.chart.didLoad());
    QVERIFY(held.chart.interaction().hasTrackingArea());
    QCOMPARE(held.layer(1).geometry().end, 2.5 * pi);
    QCOMPARE(finished.count(), 1);
    held.chart.animateOut();
    QCOMPARE(held.layer(1).geometry().sweep(), 0.0);
    QVERIFY(held.chart.interaction().hasTrackingArea());
}

void TestPieChart::foldsToTheStartAngle()
{
    HeldChart held({1, 1});
    held.settle();
    held.chart.animateOut();
    QVERIFY(!held.chart.interaction().hasTrackingArea());
    QCOMPARE(held.layer(1).geometry().end, 2.5 * pi);
    held.pass(0.3);
    QVERIFY(held.layer(1).geometry().end < 2 * pi);
    held.pass(0.45);
    for (std::size_t i = 0; i < 2; ++i) {
        QCOMPARE(held.layer(i).geometry().start, pi / 2);
        QCOMPARE(held.layer(i).geometry().end, pi / 2);
    }
    QCOMPARE(held.chart.sliceLayers().size(), std::size_t(2));
}

void TestPieChart::foldsInTheDataSourcesColors()
{
    HeldChart held;
    held.page.setValues({1, 1});
    held.page.slices[0].color = Qt::red;
    held.page.slices[0].secondaryColor = Qt::blue;
    held.chart.reloadData();
    held.settle();
    QCOMPARE(held.layer(0).brush().style(), Qt::LinearGradientPattern);
    held.page.slices[0].color = Qt::green;
    held.chart.animateOut();
    QCOMPARE(held.layer(0).brush(), QBrush(Qt::green));
    // Without a colour from the data source there is none, not even the chart's own.
    QVERIFY(!held.layer(1).fillColor());
    QCOMPARE(held.layer(1).brush().style(), Qt::NoBrush);
}

void TestPieChart::growsAgainAfterFolding()
{
    HeldChart held({1, 1});
    held.page.slices[0].color = Qt::red;
    held.settle();
    held.chart.animateOut();
    held.settle();
    held.chart.reloadData(); // still loaded: in gradients, which grow with their slices
    QCOMPARE(held.layer(1).geometry().sweep(), 0.0);
    held.pass(0.3);
    const SliceLayer &layer = held.layer(0);
    QVERIFY(layer.geometry().sweep() > 0.5);
    QCOMPARE(layer.gradientLayer()->frame(), layer.path().boundingRect());
    QVERIFY(layer.gradientLayer()->colors());
}

void TestPieChart::turnsItsShadowOffWhenFolding()
{
    HeldChart held({1, 1});
    held.chart.setDrawShadow(true);
    held.settle();
    held.chart.animateOut();
    QVERIFY(!held.chart.drawShadow());
}

void TestPieChart::endsByItselfInRealTime()
{
    FakeSlices page;
    page.setValues({1, 2, 3});
    PieChart chart(QRect(0, 0, 400, 300));
    chart.setDataSource(&page);
    chart.setAnimationSpeed(0.2);
    chart.show();
    QSignalSpy finished(&chart, &PieChart::animationFinished);
    const MediaTime begin = steadyMediaTime();
    chart.reloadData();
    QTRY_COMPARE(finished.count(), 1);
    QVERIFY(steadyMediaTime() - begin >= MediaTime(0.2));
    QCOMPARE(chart.sliceLayers()[2]->geometry().end, 2.5 * pi);
}

void TestPieChart::endsWithItsOwnerInTheMiddleOfAnAnimation()
{
    SliceLayers layers;
    {
        HeldChart held({1, 1});
        held.pass(0.3);
        layers = held.chart.sliceLayers();
    }
    // A caller that still holds a slice and changes its label does no harm.
    layers[0]->infoLayer()->setInfo(nullptr);
    QVERIFY(layers[0]->arc().animationForKey(ArcKey::EndAngle));
}

VANTOR_GUI_TEST_MAIN(TestPieChart)
#include "tst_PieChart.moc"
