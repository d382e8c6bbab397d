#include "chart/PieAnimation.h"

#include "tests/chart/MadePie.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QSignalSpy>
#include <QTimer>
#include <QWindow>

using Hide = std::function<void(QWidget &)>;
Q_DECLARE_METATYPE(Hide)

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
    void hasNoTimerWhileItStandsStill();
    void hasNoFramesWhileNobodySees_data();
    void hasNoFramesWhileNobodySees();
    void paintsNothingWhileItIsHidden();
    void goesOnWhenItIsSeenAgain();
    void endsInTimeWhereNobodySees();
};

namespace {

/// Counts how often a widget is painted.
class PaintCounter final : public QObject
{
public:
    explicit PaintCounter(QWidget &widget) { widget.installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

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

    QTimer &timer() { return *animation.findChild<QTimer *>(QStringLiteral("updateTimer")); }

    void show()
    {
        pie.show();
        if (!QTest::qWaitForWindowExposed(&pie))
            qFatal("the pie does not come up");
        QCoreApplication::processEvents();
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

void TestPieAnimation::hasNoTimerWhileItStandsStill()
{
    HeldAnimation held;
    held.show();
    QVERIFY(!held.timer().isActive());
    held.begin(0, {1, 1}, {1, 3});
    QVERIFY(held.timer().isActive());
    held.pass(0.75);
    QVERIFY(!held.timer().isActive());
    held.begin(0, {1, 1}, {1, 2});
    held.pie.slice(0).arc().removeAllAnimations(); // nothing is left that could end
    held.pass(0.01);
    QVERIFY(!held.timer().isActive());
}

void TestPieAnimation::hasNoFramesWhileNobodySees_data()
{
    QTest::addColumn<Hide>("hide");
    QTest::newRow("hidden") << Hide([](QWidget &window) { window.hide(); });
    QTest::newRow("minimised") << Hide([](QWidget &window) { window.showMinimized(); });
}

void TestPieAnimation::hasNoFramesWhileNobodySees()
{
    QFETCH(const Hide, hide);
    HeldAnimation held;
    held.show();
    held.begin(0, {1, 1}, {1, 3});
    QCOMPARE(held.timer().interval(), 16);
    hide(held.pie);
    held.pass(0.25); // the frame that was due
    QCOMPARE(held.timer().interval(), 500);
    held.begin(1, {1, 1}, {2, 3}); // ends after the first one
    QCOMPARE(held.timer().interval(), 750);
}

void TestPieAnimation::paintsNothingWhileItIsHidden()
{
    HeldAnimation held;
    held.show();
    held.pie.hide();
    const PaintCounter painted(held.pie);
    held.begin(0, {1, 1}, {1, 3});
    held.pass(0.3);
    held.pass(0.45);
    QCoreApplication::processEvents();
    QCOMPARE(painted.count, 0);
    held.show();
    QTRY_COMPARE(painted.count, 1); // as it is now
}

void TestPieAnimation::goesOnWhenItIsSeenAgain()
{
    HeldAnimation held;
    held.show();
    held.pie.hide();
    held.begin(0, {1, 1}, {1, 3});
    QCOMPARE(held.timer().interval(), 750);
    held.show();
    QCOMPARE(held.timer().interval(), 16); // since it was painted
    held.pass(0.75);
    QVERIFY(!held.timer().isActive());
}

void TestPieAnimation::endsInTimeWhereNobodySees()
{
    MadePie pie(2);
    PieAnimation animation(pie); // by the real clock
    animation.setSpeed(0.1);
    QSignalSpy finished(&animation, &PieAnimation::finished);
    animation.prepare(pie.slice(0), {1, 1}, {1, 3});
    animation.commit();
    QVERIFY(finished.wait());
    QCOMPARE(pie.slice(0).geometry().sweep(), 2.0);
    QCOMPARE(finished.count(), 1);
}

VANTOR_GUI_TEST_MAIN(TestPieAnimation)
#include "tst_PieAnimation.moc"
