#include "platform/base/Log.h"
#include "tests/chart/FakeSlices.h"
#include "tests/support/run/GuiTestMain.h"

#include <cmath>
#include <limits>

using std::numbers::pi;

namespace {

QStringList *s_lines = nullptr;

/// Records what the chart logs as long as this object lives.
class ChartLog final
{
public:
    ChartLog()
    {
        s_lines = &lines;
        QLoggingCategory::setFilterRules(QStringLiteral("vantor.chart.debug=true"));
        qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { *s_lines << text; });
    }
    ~ChartLog()
    {
        qInstallMessageHandler(nullptr);
        QLoggingCategory::setFilterRules({});
    }

    QStringList lines;
};

/// Records what a reload asks before it lays anything out.
class AskedSlices final : public PieChartDataSource
{
public:
    int numberOfSlicesInPieChart(PieChart &) override
    {
        asked << QStringLiteral("count");
        return 2;
    }
    std::shared_ptr<Info> infoForSliceAtIndex(PieChart &, int index) override
    {
        asked << QStringLiteral("info %1").arg(index);
        return nullptr;
    }
    double valueForSliceAtIndex(PieChart &, int index) override
    {
        asked << QStringLiteral("value %1").arg(index);
        return 1;
    }

    QStringList asked;
};

} // namespace

/// How a pie that is shown becomes another one.
class TestPieChartReload final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reusesAllSlicesForAsManyValues();
    void movesAndReusesTheFirstOfThree();
    void insertsANewSliceBeforeTwo();
    void appendsToSlicesThatStay();
    void foldsWhenAllValuesAreZero();
    void foldsWhenThereAreNoSlices();
    void comesBackFromFolding();
    void showsZeroWidthSlicesOfANewPie();
    void takesUnsoundValuesForNothing();
    void answersForTheSliceThatIsSeen();
    void asksSliceBySliceForRecordAndValue();
    void asksForNoSliceThatThereIsNot();
    void recolorsWithoutMovingAnything();
    void hidesTheLabelsOfRemovedSlices();
    void writesItsLogLines();
};

void TestPieChartReload::reusesAllSlicesForAsManyValues()
{
    HeldChart held({1, 1, 2});
    held.settle();
    const SliceLayers before = held.chart.sliceLayers();
    held.page.setValues({2, 1, 1});
    held.chart.reloadData();
    QCOMPARE(held.chart.sliceLayers(), before);
    QCOMPARE(held.layer(0).arc().animationForKey(ArcKey::EndAngle)->fromValue(), pi);
    QCOMPARE(held.layer(0).endAngle(), 1.5 * pi);
    QCOMPARE(held.layer(0).geometry().end, pi);
    held.settle();
    QCOMPARE(held.layer(0).geometry().end, 1.5 * pi);
    QCOMPARE(held.layer(0).percentage(), 0.5);
}

void TestPieChartReload::movesAndReusesTheFirstOfThree()
{
    HeldChart held({1, 2, 3});
    held.settle();
    held.chart.setBackgroundColor(QColor(1, 2, 3));
    const SliceLayers before = held.chart.sliceLayers();
    held.page.setValues({5, 2});
    held.chart.reloadData();
    QCOMPARE(held.chart.sliceLayers(), (SliceLayers{before[1], before[0]}));
    QCOMPARE(before[0]->value(), 5.0);
    QCOMPARE(before[0]->startAngle(), pi / 2);
    QCOMPARE(before[1]->value(), 2.0);
    QCOMPARE(before[1]->endAngle(), 2.5 * pi);
    QCOMPARE(*before[2]->fillColor(), QColor(1, 2, 3));
    QVERIFY(before[2]->infoLayer()->isHidden());
    QVERIFY(!before[2]->arc().animationForKey(ArcKey::EndAngle));
    held.settle();
    QVERIFY(!held.chart.isAnimating());
}

void TestPieChartReload::insertsANewSliceBeforeTwo()
{
    HeldChart held({1, 2});
    held.settle();
    const SliceLayers before = held.chart.sliceLayers();
    held.page.setValues({5, 2, 3});
    held.chart.reloadData();
    const SliceLayers &after = held.chart.sliceLayers();
    QCOMPARE(after.size(), std::size_t(3));
    QVERIFY(after[0] != before[0] && after[0] != before[1]);
    QCOMPARE(after[1], before[1]);
    QCOMPARE(after[0]->value(), 5.0);
    QCOMPARE(after[2]->value(), 3.0);
    QVERIFY(before[0]->infoLayer()->isHidden());
    // A new slice of a pie that is already shown is at its final position at once.
    QCOMPARE(after[0]->geometry().end, after[0]->endAngle());
    QCOMPARE(after[2]->geometry().end, 2.5 * pi);
}

void TestPieChartReload::appendsToSlicesThatStay()
{
    HeldChart held({1, 2});
    held.settle();
    const SliceLayers before = held.chart.sliceLayers();
    held.page.setValues({1, 2, 3});
    held.chart.reloadData();
    QCOMPARE(held.chart.sliceLayers()[0], before[0]);
    QCOMPARE(held.chart.sliceLayers()[1], before[1]);
    QCOMPARE(held.chart.sliceLayers().size(), std::size_t(3));
}

void TestPieChartReload::foldsWhenAllValuesAreZero()
{
    HeldChart held;
    held.page.setValues({1, 2});
    held.page.slices[0].info = Info::infoWithName(QStringLiteral("Trash"), std::nullopt);
    held.chart.reloadData();
    held.settle();
    held.page.setValues({0, 0});
    held.chart.reloadData();
    QCOMPARE(held.chart.sliceLayers().size(), std::size_t(2));
    QVERIFY(!held.layer(0).infoLayer()->info());
    QVERIFY(held.layer(1).geometry().sweep() > 4); // shrinks from its present arc
    held.pass(0.3);
    QVERIFY(held.layer(1).geometry().sweep() < 2);
    held.settle();
    for (const auto &layer : held.chart.sliceLayers()) {
        QCOMPARE(layer->geometry().start, pi / 2);
        QCOMPARE(layer->geometry().end, pi / 2);
    }
}

void TestPieChartReload::foldsWhenThereAreNoSlices()
{
    HeldChart held({1, 2});
    held.settle();
    held.page.setValues({});
    held.chart.reloadData();
    held.settle();
    QCOMPARE(held.chart.sliceLayers().size(), std::size_t(2));
    QCOMPARE(held.layer(1).geometry().sweep(), 0.0);
}

void TestPieChartReload::comesBackFromFolding()
{
    HeldChart held({1, 1});
    held.settle();
    held.page.setValues({0, 0});
    held.chart.reloadData();
    held.settle();
    held.page.setValues({1, 3});
    held.chart.reloadData();
    QCOMPARE(held.layer(0).geometry().sweep(), 0.0);
    held.settle();
    QCOMPARE(held.layer(0).geometry().end, pi);
    QCOMPARE(held.layer(1).geometry().end, 2.5 * pi);
}

void TestPieChartReload::showsZeroWidthSlicesOfANewPie()
{
    HeldChart held({0, 0});
    QCOMPARE(held.chart.sliceLayers().size(), std::size_t(2));
    held.settle();
    for (const auto &layer : held.chart.sliceLayers()) {
        QCOMPARE(layer->percentage(), 0.0);
        QCOMPARE(layer->geometry().sweep(), 0.0);
    }
    QVERIFY(held.chart.didLoad());
}

void TestPieChartReload::takesUnsoundValuesForNothing()
{
    HeldChart held(
        {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -5, 1});
    held.settle();
    QCOMPARE(held.layer(3).percentage(), 1.0);
    QCOMPARE(held.layer(3).geometry().sweep(), 2 * pi);
    for (std::size_t i = 0; i < 3; ++i)
        QCOMPARE(held.layer(i).geometry().sweep(), 0.0);
}

void TestPieChartReload::answersForTheSliceThatIsSeen()
{
    HeldChart held({1, 2, 3});
    held.settle();
    held.page.setValues({5, 2});
    held.page.slices[0].color = Qt::red;
    held.page.slices[1].color = Qt::blue;
    held.chart.reloadData();
    held.settle();
    // Slice 0 is now the upper one in the list; it still has its own colour and clicks.
    QCOMPARE(held.layer(1).index(), 0);
    QCOMPARE(held.layer(1).brush(), QBrush(Qt::red));
    QCOMPARE(held.layer(0).brush(), QBrush(Qt::blue));
    QCOMPARE(held.chart.getCurrentSelectedOnLocation({195, 50}), 0); // left of the top
    QCOMPARE(held.chart.getCurrentSelectedOnLocation({205, 50}), 1);
}

/// A page may make the record at the first question and compute its value at the second.
void TestPieChartReload::asksSliceBySliceForRecordAndValue()
{
    AskedSlices page;
    PieChart chart(QRect(0, 0, 400, 300));
    chart.setDataSource(&page);
    chart.reloadData();
    QCOMPARE(page.asked, QStringList({QStringLiteral("count"), QStringLiteral("info 0"),
                                      QStringLiteral("value 0"), QStringLiteral("info 1"),
                                      QStringLiteral("value 1")}));
}

void TestPieChartReload::asksForNoSliceThatThereIsNot()
{
    HeldChart held({1, 2, 3, 4});
    held.settle();
    held.page.setValues({9, 8});
    held.page.highestIndexAsked = -1;
    held.chart.reloadData();
    held.settle();
    QCOMPARE(held.page.highestIndexAsked, 1);
}

void TestPieChartReload::recolorsWithoutMovingAnything()
{
    HeldChart held({1, 1});
    held.settle();
    const QPainterPath path = held.layer(0).path();
    held.page.slices[0].color = Qt::gray;
    held.chart.reloadData();
    QCOMPARE(held.layer(0).brush(), QBrush(Qt::gray)); // at once
    held.pass(0.3);
    QCOMPARE(held.layer(0).path(), path);
}

void TestPieChartReload::hidesTheLabelsOfRemovedSlices()
{
    HeldChart held({1, 2, 3});
    held.pass(0.3); // in the middle of growing
    const SliceLayers before = held.chart.sliceLayers();
    held.page.setValues({1, 2});
    held.chart.reloadData();
    QVERIFY(before[2]->infoLayer()->isHidden());
    held.settle();
    QVERIFY(!held.chart.isAnimating());
    QCOMPARE(held.layer(1).geometry().end, 2.5 * pi);
}

void TestPieChartReload::writesItsLogLines()
{
    HeldChart held({1, 1});
    ChartLog log;
    held.pass(0.3);
    QCOMPARE(log.lines.size(), 2); // one for each slice
    QCOMPARE(log.lines[0], QString::asprintf("%lf", held.layer(0).geometry().end));
    log.lines.clear();
    held.settle();
    QCOMPARE(log.lines[2], QStringLiteral("here"));
    QCOMPARE(log.lines.last(), QStringLiteral("Animation finished"));
    QCOMPARE(log.lines.size(), 6);
    log.lines.clear();
    held.chart.reloadData();
    held.settle();
    QVERIFY(!log.lines.contains(QStringLiteral("here")));
    QCOMPARE(log.lines.last(), QStringLiteral("Animation finished"));
}

VANTOR_GUI_TEST_MAIN(TestPieChartReload)
#include "tst_PieChartReload.moc"
