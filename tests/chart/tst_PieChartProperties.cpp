#include "tests/chart/FakeSlices.h"
#include "tests/support/run/GuiTestMain.h"

namespace {

/// Gives only the answers that it must give.
class PlainSlices final : public PieChartDataSource
{
public:
    int numberOfSlicesInPieChart(PieChart &) override { return 2; }
    std::shared_ptr<Info> infoForSliceAtIndex(PieChart &, int) override { return nullptr; }
    double valueForSliceAtIndex(PieChart &, int) override { return 1; }
};

} // namespace

/// What the chart starts with, and what follows from its size and its page's colours.
class TestPieChartProperties final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsDefaults();
    void derivesItsMeasuresFromItsFrame();
    void keepsTheLabelRadiusOfItsFrame();
    void followsItsSizeUntilItIsTold();
    void hearsItsPropertiesFromAnInterfaceDescription();
    void refitsItsSlicesWhenItsSizeChanges();
    void usesItsOwnColorsWhereThereAreNone();
    void givesTheSecondColorOfTheGradient();
};

void TestPieChartProperties::hasItsDefaults()
{
    PieChart chart(QRect(0, 0, 400, 300));
    QVERIFY(!chart.dataSource());
    QVERIFY(!chart.delegate());
    QCOMPARE(chart.startPieAngle(), 1.5707963267948966);
    QCOMPARE(chart.animationSpeed(), 0.75);
    QVERIFY(!chart.didLoad());
    QVERIFY(!chart.interaction().hasTrackingArea());
    QVERIFY(!chart.isAnimating());
    QVERIFY(chart.sliceLayers().empty());
    QCOMPARE(chart.backgroundColor().alpha(), 0);
    QVERIFY(!chart.drawShadow());
}

void TestPieChartProperties::derivesItsMeasuresFromItsFrame()
{
    const PieChart chart(QRect(10, 20, 400, 300));
    QCOMPARE(chart.geometry(), QRect(10, 20, 400, 300));
    QCOMPARE(chart.center(), QPointF(200, 150));
    QCOMPARE(chart.pieRadius(), 150.0);
    QCOMPARE(chart.infoRadius(), 75.0);
}

void TestPieChartProperties::keepsTheLabelRadiusOfItsFrame()
{
    const PieChart chart(QRect(0, 0, 400, 300), QPointF(120, 130), 100);
    QCOMPARE(chart.center(), QPointF(120, 130));
    QCOMPARE(chart.pieRadius(), 100.0);
    QCOMPARE(chart.infoRadius(), 75.0);
}

void TestPieChartProperties::followsItsSizeUntilItIsTold()
{
    QWidget window;
    PieChart chart(&window);
    chart.resize(200, 500);
    QCOMPARE(chart.center(), QPointF(100, 250));
    QCOMPARE(chart.pieRadius(), 100.0);
    QCOMPARE(chart.infoRadius(), 50.0);
    chart.setInfoRadius(120);
    chart.setCenter({90, 80});
    chart.resize(600, 400);
    QCOMPARE(chart.center(), QPointF(90, 80));
    QCOMPARE(chart.pieRadius(), 200.0);
    QCOMPARE(chart.infoRadius(), 120.0);
}

void TestPieChartProperties::hearsItsPropertiesFromAnInterfaceDescription()
{
    PieChart chart;
    QVERIFY(chart.setProperty("pieRadius", 90.0));
    QVERIFY(chart.setProperty("infoRadius", 40.0));
    QVERIFY(chart.setProperty("startPieAngle", 1.0));
    QVERIFY(chart.setProperty("animationSpeed", 0.5));
    QCOMPARE(chart.pieRadius(), 90.0);
    QCOMPARE(chart.infoRadius(), 40.0);
    QCOMPARE(chart.startPieAngle(), 1.0);
    QCOMPARE(chart.animationSpeed(), 0.5);
}

void TestPieChartProperties::refitsItsSlicesWhenItsSizeChanges()
{
    HeldChart held({1, 1});
    held.settle();
    held.window.show();
    held.chart.resize(200, 200);
    QCOMPARE(held.layer(0).geometry().radius, 100.0);
    QCOMPARE(held.layer(0).geometry().center, QPointF(100, 100));
    QCOMPARE(held.layer(0).infoLayer()->position(), QPoint(50, 100));
    held.chart.setPieRadius(80);
    QCOMPARE(held.layer(0).path().boundingRect().left(), 20.0);
    held.chart.setInfoRadius(10);
    QCOMPARE(held.layer(0).infoLayer()->position(), QPoint(90, 100));
    // In the widget's coordinates: twenty points from its top.
    held.chart.setCenter({100, 20});
    QCOMPARE(held.layer(0).geometry().center, QPointF(100, 180));
}

void TestPieChartProperties::usesItsOwnColorsWhereThereAreNone()
{
    PlainSlices page;
    PieChart chart(QRect(0, 0, 400, 300));
    chart.setAnimationSpeed(0);
    chart.setDataSource(&page);
    chart.reloadData();
    const SliceLayer &layer = *chart.sliceLayers()[1];
    QCOMPARE(*layer.fillColor(), SliceSource::defaultColor(1));
    QCOMPARE(layer.brush(), QBrush(SliceSource::defaultColor(1)));
}

void TestPieChartProperties::givesTheSecondColorOfTheGradient()
{
    HeldChart held({1, 1});
    held.page.slices[0].color = Qt::red;
    held.page.slices[0].secondaryColor = Qt::blue;
    held.page.slices[1].color = Qt::green;
    held.settle();
    QCOMPARE(*held.layer(0).gradientLayer()->colors(), (GradientLayer::Colors{Qt::red, Qt::blue}));
    QCOMPARE(*held.layer(1).gradientLayer()->colors(),
             (GradientLayer::Colors{Qt::green, Qt::green}));
}

VANTOR_GUI_TEST_MAIN(TestPieChartProperties)
#include "tst_PieChartProperties.moc"
