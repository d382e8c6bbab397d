#include "chart/PieAnimation.h"

#include "tests/chart/MadePie.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QSignalSpy>

class TestPieAnimation final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void movesShapesWithTheTime();
    void tellsOfEachArcAndOfTheEndOnce();
    void endsWithTheLastArc();
    void isOverAtOnceWithoutDuration_data();
    void isOverAtOnceWithoutDuration();
    void goesOnFromWhereTheSliceIsSeen();
    void bearsThatSlicesGoWhenItEnds();
};

namespace {

/// Two slices, and a clock that the test sets.
class HeldAnimation final
{
public:
    MediaTime now{1000};
    MadePie pie{2};
    PieAnimation animation{pie};

    HeldAnimation()
    {
        animation.setClock([this] { return now; });
    }

    void begin(std::size_t place, Arc from, Arc to)
    {
        animation.prepare(pie.slice(place), from, to);
        animation.commit();
    }
    void pass(double seconds)
    {
        now += MediaTime(seconds);
        animation.updateTimerFired();
    }
};

} // namespace

void TestPieAnimation::movesShapesWithTheTime()
{
    HeldAnimation held;
    held.begin(0, {1, 1}, {1, 3});
    QVERIFY(held.animation.isRunning());
    QCOMPARE(held.pie.slice(0).geometry().sweep(), 0.0);
    held.pass(0.3);
    const double between = held.pie.slice(0).geometry().sweep();
    QVERIFY(between > 0 && between < 2);
    held.pass(0.45);
    QCOMPARE(held.pie.slice(0).geometry().sweep(), 2.0);
    QVERIFY(!held.animation.isRunning());
}

void TestPieAnimation::tellsOfEachArcAndOfTheEndOnce()
{
    HeldAnimation held;
    QSignalSpy started(&held.animation, &PieAnimation::started);
    QSignalSpy finished(&held.animation, &PieAnimation::finished);
    held.animation.prepare(held.pie.slice(0), {1, 1}, {1, 2});
    held.animation.prepare(held.pie.slice(1), {1, 1}, {2, 3});
    QCOMPARE(started.count(), 0);
    held.animation.commit();
    QCOMPARE(started.count(), 4); // two angles each
    QCOMPARE(finished.count(), 0);
    held.pass(0.75);
    held.pass(0.75);
    QCOMPARE(finished.count(), 1);
}

void TestPieAnimation::endsWithTheLastArc()
{
    HeldAnimation held;
    QSignalSpy finished(&held.animation, &PieAnimation::finished);
    held.begin(0, {1, 1}, {1, 2});
    held.pass(0.5);
    held.begin(1, {1, 1}, {2, 3});
    held.pass(0.5);
    QCOMPARE(finished.count(), 0);
    QVERIFY(held.animation.isRunning());
    held.pass(0.25);
    QCOMPARE(finished.count(), 1);
}

void TestPieAnimation::isOverAtOnceWithoutDuration_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<bool>("isStill");
    QTest::newRow("no duration") << 0.0 << false;
    QTest::newRow("a desktop without animations") << 0.75 << true;
}

void TestPieAnimation::isOverAtOnceWithoutDuration()
{
    QFETCH(const double, speed);
    QFETCH(const bool, isStill);
    HeldAnimation held;
    StillStyle style;
    if (isStill)
        held.pie.setStyle(&style);
    held.animation.setSpeed(speed);
    held.begin(0, {1, 1}, {1, 3});
    QVERIFY(!held.animation.isRunning());
    QCOMPARE(held.pie.slice(0).geometry().sweep(), 2.0);
}

void TestPieAnimation::goesOnFromWhereTheSliceIsSeen()
{
    HeldAnimation held;
    held.begin(0, {1, 1}, {1, 3});
    held.pass(0.3);
    const double seen = held.pie.slice(0).geometry().end;
    held.begin(0, {0, 0}, {1, 6});
    QCOMPARE(held.pie.slice(0).geometry().end, seen);
    held.pass(0.75);
    QCOMPARE(held.pie.slice(0).geometry().end, 6.0);
}

void TestPieAnimation::bearsThatSlicesGoWhenItEnds()
{
    HeldAnimation held;
    held.begin(0, {1, 1}, {1, 3});
    connect(&held.animation, &PieAnimation::finished, this, [&] {
        held.pie.removeLast();
        held.pie.removeLast();
    });
    held.pass(0.75);
    QVERIFY(held.pie.sliceLayers().empty());
}

VANTOR_GUI_TEST_MAIN(TestPieAnimation)
#include "tst_PieAnimation.moc"
