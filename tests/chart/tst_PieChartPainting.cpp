#include "tests/chart/FakeSlices.h"
#include "tests/support/run/GuiTestMain.h"

#include <QPaintEvent>
#include <cmath>

using std::numbers::pi;

namespace {

const std::array kColors{QColor(200, 30, 30), QColor(30, 160, 40), QColor(30, 60, 200)};

/// The area of a widget that was repainted.
class PaintedArea final : public QObject
{
public:
    explicit PaintedArea(QWidget &widget) { widget.installEventFilter(this); }

    QRect area;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            area |= static_cast<QPaintEvent *>(event)->rect();
        return false;
    }
};

void setColors(FakeSlices &page)
{
    for (std::size_t i = 0; i < page.slices.size(); ++i)
        page.slices[i].color = kColors[i % kColors.size()];
}

/// The slice that covers a point with some room around it; nothing near an edge.
std::optional<int> sliceWellAround(const PieChart &chart, QPointF point)
{
    constexpr double kRoom = 1.5;
    const int index = chart.getCurrentSelectedOnLocation(point);
    for (const QPointF offset : {QPointF(kRoom, kRoom), QPointF(-kRoom, kRoom),
                                 QPointF(kRoom, -kRoom), QPointF(-kRoom, -kRoom)}) {
        if (chart.getCurrentSelectedOnLocation(point + offset) != index)
            return std::nullopt;
    }
    return index;
}

/// Compares the picture with the hit test on a grid. Returns how many slice points were compared.
int comparedPoints(HeldChart &held, double scale)
{
    const QImage image = held.picture(scale);
    int compared = 0;
    for (int y = 1; y < 300; y += 4) {
        for (int x = 1; x < 400; x += 4) {
            const QPointF point(x + 0.5, y + 0.5);
            const auto index = sliceWellAround(held.chart, point);
            if (!index)
                continue;
            const QColor expected =
                *index == -1 ? QColor(Qt::white) : kColors[static_cast<std::size_t>(*index)];
            const QColor seen = image.pixelColor((point * scale).toPoint());
            if (seen != expected)
                qFatal("%d,%d is %s, not %s", x, y, qPrintable(seen.name()),
                       qPrintable(expected.name()));
            compared += *index == -1 ? 0 : 1;
        }
    }
    return compared;
}

std::shared_ptr<Info> labelled(const QString &name)
{
    return std::make_shared<Info>(name, std::nullopt, QStringLiteral("shadow"),
                                  QStringLiteral("1 GB"));
}

} // namespace

class TestPieChartPainting final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paintsWhatItHits_data();
    void paintsWhatItHits();
    void paintsTheGroundOfAFoldedPie();
    void laysSlicesCounterClockwiseFromTheTop();
    void paintsTheFirstColorBelowAndTheSecondAbove();
    void paintsFlatBeforeItHasSettled();
    void paintsNothingForClearSlices();
    void leavesNoSeamBetweenSlices();
    void setsNeighboursOfOneColorApart();
    void paintsAWholeDiscWithoutALine();
    void paintsLabelsAboveAllSlices();
    void paintsItsBackground();
    void repaintsOnlyTheSliceThatChanged();
    void doesNotRepaintWhatStandsStill();
};

void TestPieChartPainting::paintsWhatItHits_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("time");
    for (const double scale : {1.0, 1.5, 2.0}) {
        QTest::addRow("at %.1f, in the middle of growing", scale) << scale << 0.15;
        QTest::addRow("at %.1f, settled", scale) << scale << 0.75;
    }
}

void TestPieChartPainting::paintsWhatItHits()
{
    QFETCH(double, scale);
    QFETCH(double, time);
    HeldChart held;
    held.page.setValues({1, 1, 2});
    setColors(held.page);
    held.chart.reloadData();
    held.pass(time);
    // The disc covers about 4400 points of the grid; at the earlier time 30 % of it have grown.
    QVERIFY(comparedPoints(held, scale) > (time < 0.75 ? 1000 : 4000));
}

void TestPieChartPainting::paintsTheGroundOfAFoldedPie()
{
    HeldChart held;
    held.page.setValues({1, 1, 2});
    setColors(held.page);
    held.chart.reloadData();
    QImage white(400, 300, QImage::Format_ARGB32_Premultiplied);
    white.fill(Qt::white);
    QCOMPARE(held.picture(), white); // nothing has grown yet
    held.settle();
    QVERIFY(held.picture() != white);
    held.page.setValues({0, 0, 0});
    held.chart.reloadData();
    held.settle();
    QCOMPARE(held.picture(), white);
}

void TestPieChartPainting::laysSlicesCounterClockwiseFromTheTop()
{
    HeldChart held;
    held.page.setValues({1, 1, 2});
    setColors(held.page);
    held.chart.reloadData();
    held.settle();
    const QImage image = held.picture();
    QCOMPARE(image.pixelColor(150, 100), kColors[0]); // up left
    QCOMPARE(image.pixelColor(150, 200), kColors[1]); // down left
    QCOMPARE(image.pixelColor(250, 100), kColors[2]);
    QCOMPARE(image.pixelColor(250, 200), kColors[2]);
}

void TestPieChartPainting::paintsTheFirstColorBelowAndTheSecondAbove()
{
    HeldChart held;
    held.page.setValues({1});
    held.page.slices[0].color = Qt::red;
    held.page.slices[0].secondaryColor = Qt::blue;
    held.chart.reloadData();
    held.settle();
    const QImage image = held.picture();
    QVERIFY(image.pixelColor(200, 5).blue() > 235);
    QVERIFY(image.pixelColor(200, 294).red() > 235);
    QVERIFY(std::abs(image.pixelColor(200, 150).red() - 127) < 4);
    QCOMPARE(image.pixelColor(120, 220), image.pixelColor(280, 220)); // only from bottom to top
}

void TestPieChartPainting::paintsFlatBeforeItHasSettled()
{
    HeldChart held;
    held.page.setValues({1});
    held.page.slices[0].color = Qt::red;
    held.page.slices[0].secondaryColor = Qt::blue;
    held.chart.reloadData();
    held.pass(0.74);
    const QImage image = held.picture();
    QCOMPARE(image.pixelColor(150, 20), QColor(Qt::red));
    QCOMPARE(image.pixelColor(200, 294), QColor(Qt::red));
}

void TestPieChartPainting::paintsNothingForClearSlices()
{
    HeldChart held;
    held.page.setValues({1, 1, 2});
    setColors(held.page);
    held.page.slices[2].color = Qt::transparent;
    held.chart.reloadData();
    held.pass(0.74);
    QCOMPARE(held.picture().pixelColor(250, 200), QColor(Qt::white));
    held.settle();
    const QImage image = held.picture();
    QCOMPARE(image.pixelColor(250, 200), QColor(Qt::white));
    QCOMPARE(image.pixelColor(150, 200), kColors[1]);
    // And nothing of its neighbours: not even below their edges.
    for (int y = 2; y < 299; ++y)
        QCOMPARE(image.pixelColor(201, y), QColor(Qt::white));
}

void TestPieChartPainting::leavesNoSeamBetweenSlices()
{
    HeldChart held;
    held.page.setValues({3, 4, 5, 6, 7});
    for (FakeSlice &slice : held.page.slices)
        slice.color = QColor(0, 255, 0);
    held.chart.reloadData();
    held.settle();
    QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::red);
    held.chart.render(&image, {}, {}, QWidget::RenderFlags());
    for (int y = 0; y < 300; ++y) {
        for (int x = 0; x < 400; ++x) {
            // The separating line is white. A pixel with more red than blue shows the background.
            const QColor seen = image.pixelColor(x, y);
            if (std::hypot(x + 0.5 - 200, y + 0.5 - 150) < 147)
                QVERIFY(seen.red() - seen.blue() <= 2);
        }
    }
}

void TestPieChartPainting::setsNeighboursOfOneColorApart()
{
    HeldChart held;
    held.page.setValues({1, 1});
    held.page.slices[0].color = held.page.slices[1].color = QColor(134, 134, 134);
    held.chart.reloadData();
    held.settle();
    const QImage image = held.picture(2);
    QVERIFY(image.pixelColor(400, 100).red() > 150);
    QCOMPARE(image.pixelColor(404, 100).red(), 134);
    QCOMPARE(image.pixelColor(396, 100).red(), 134);
}

void TestPieChartPainting::paintsAWholeDiscWithoutALine()
{
    HeldChart held;
    held.page.setValues({0, 1, 0});
    setColors(held.page);
    held.chart.reloadData();
    held.settle();
    const QImage image = held.picture(2);
    for (int y = 8; y < 592; ++y)
        QCOMPARE(image.pixelColor(400, y), kColors[1]);
}

void TestPieChartPainting::paintsLabelsAboveAllSlices()
{
    HeldChart held;
    held.page.setValues({1, 1});
    held.page.slices[0].color = held.page.slices[1].color = Qt::black;
    held.page.slices[0].info = labelled(QStringLiteral("HHHHHHHHHHHHHHHHHHHHHHHHH"));
    held.chart.reloadData();
    held.settle();
    awaitBackgroundThreads();
    const QImage image = held.picture();
    // The name of the left slice reaches into the right one.
    QVERIFY(held.layer(0).infoLayer()->nameFrame().right() + 125 > 215);
    bool isLight = false;
    for (int y = 155; y < 180; ++y)
        isLight |= image.pixelColor(210, y).lightness() > 100;
    QVERIFY(isLight);
}

void TestPieChartPainting::paintsItsBackground()
{
    HeldChart held;
    held.chart.setBackgroundColor(QColor(10, 20, 30));
    QCOMPARE(held.picture().pixelColor(3, 3), QColor(10, 20, 30));
}

void TestPieChartPainting::repaintsOnlyTheSliceThatChanged()
{
    HeldChart held;
    held.page.setValues({1, 1, 1, 1});
    setColors(held.page);
    held.chart.reloadData();
    held.settle();
    held.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&held.window));
    QCoreApplication::processEvents();
    PaintedArea painted(held.chart);
    held.page.slices[2].color = Qt::gray; // down right
    held.chart.reloadData();
    QTRY_VERIFY(!painted.area.isNull());
    QVERIFY(painted.area.left() > 190 && painted.area.top() > 140);
    QVERIFY(painted.area.contains(QRect(201, 151, 148, 148)));
}

void TestPieChartPainting::doesNotRepaintWhatStandsStill()
{
    HeldChart held;
    held.page.setValues({1, 1, 1});
    setColors(held.page);
    held.chart.reloadData();
    held.settle();
    held.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&held.window));
    QCoreApplication::processEvents();
    const PaintedArea painted(held.chart);
    held.chart.reloadData(); // the same again: an animation from a state to the same state
    QVERIFY(held.chart.isAnimating());
    held.pass(0.3);
    QCoreApplication::processEvents();
    held.settle();
    QCoreApplication::processEvents();
    QVERIFY(painted.area.isNull());
}

VANTOR_GUI_TEST_MAIN(TestPieChartPainting)
#include "tst_PieChartPainting.moc"
