#include "chart/SliceFocus.h"
#include "tests/support/run/TestMain.h"

#include <cmath>
#include <numbers>

namespace {

constexpr QPointF kLeft(-1, 0);
constexpr QPointF kRight(1, 0);
constexpr QPointF kUp(0, -1);
constexpr QPointF kDown(0, 1);

/// Eight slices of one size, the first one left of the top, as they lie in a widget.
std::vector<FocusStop> eightStops()
{
    std::vector<FocusStop> stops;
    for (int i = 0; i < 8; ++i) {
        const double angle = std::numbers::pi / 2 + (i + 0.5) * std::numbers::pi / 4;
        stops.push_back({i, QPointF(std::cos(angle), -std::sin(angle)) * 100});
    }
    return stops;
}

} // namespace

class TestSliceFocus final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goesToTheNeighbourInTheDirection_data();
    void goesToTheNeighbourInTheDirection();
    void startsWithTheFirstStop();
    void staysNowhereWithoutStops();
    void staysOnASingleStop();
    void skipsWhatIsNoStop();
};

void TestSliceFocus::goesToTheNeighbourInTheDirection_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<QPointF>("direction");
    QTest::addColumn<int>("to");
    QTest::newRow("right, over the top") << 0 << kRight << 7;
    QTest::newRow("left from the top") << 0 << kLeft << 1;
    QTest::newRow("down the left side") << 1 << kDown << 2;
    QTest::newRow("up the left side") << 2 << kUp << 1;
    QTest::newRow("right, along the bottom") << 3 << kRight << 4;
    QTest::newRow("left, along the bottom") << 4 << kLeft << 3;
    QTest::newRow("up the right side") << 5 << kUp << 6;
    QTest::newRow("no further up") << 0 << kUp << 0;
    QTest::newRow("no further left") << 1 << kLeft << 1;
    QTest::newRow("no further down") << 4 << kDown << 4;
}

void TestSliceFocus::goesToTheNeighbourInTheDirection()
{
    QFETCH(int, from);
    QFETCH(QPointF, direction);
    QFETCH(int, to);
    QCOMPARE(neighbourTowards(direction, from, eightStops()), to);
}

void TestSliceFocus::startsWithTheFirstStop()
{
    QCOMPARE(neighbourTowards(kDown, -1, eightStops()), 0);
}

void TestSliceFocus::staysNowhereWithoutStops()
{
    QCOMPARE(neighbourTowards(kDown, 3, {}), -1);
}

void TestSliceFocus::staysOnASingleStop()
{
    QCOMPARE(neighbourTowards(kDown, 3, {{3, {1, 1}}}), 3);
}

void TestSliceFocus::skipsWhatIsNoStop()
{
    std::vector<FocusStop> stops = eightStops();
    stops.erase(stops.begin() + 1, stops.begin() + 3);
    QCOMPARE(neighbourTowards(kDown, 0, stops), 3);
}

VANTOR_TEST_MAIN(TestSliceFocus)
#include "tst_SliceFocus.moc"
