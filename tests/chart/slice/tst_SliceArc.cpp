#include "chart/slice/SliceArc.h"
#include "tests/chart/slice/CountingDelegate.h"
#include "tests/support/run/GuiTestMain.h"

namespace {

constexpr MediaTime kBegin{100};
constexpr MediaTime kDuration{1};

} // namespace

class TestSliceArc final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isNowhereUntilItBegins();
    void movesOneAngleAlone();
    void goesOnFromWhereItIsSeen();
    void keepsItsGoalWhenItIsStopped();
    void jumpsWithoutAnimation();
};

void TestSliceArc::isNowhereUntilItBegins()
{
    SliceArc arc({1, 2});
    QVERIFY(!arc.presented());
    arc.advance(kBegin);
    QVERIFY(!arc.presented());
    arc.beginAnimations(kBegin, kDuration);
    QCOMPARE(*arc.presented(), (SliceArc::Angles{1, 2}));
}

void TestSliceArc::movesOneAngleAlone()
{
    CountingDelegate delegate;
    SliceArc arc({1, 2});
    arc.createAnimationForKey(ArcKey::EndAngle, 2, 4, delegate);
    QCOMPARE(arc.model(), (SliceArc::Angles{1, 4})); // its goal
    QCOMPARE(delegate.started, 0);
    arc.beginAnimations(kBegin, kDuration);
    QCOMPARE(delegate.started, 1);
    arc.advance(kBegin + kDuration / 2);
    const SliceArc::Angles between = *arc.presented();
    QCOMPARE(between[0], 1.0);
    QVERIFY(between[1] > 2 && between[1] < 4);
    arc.advance(kBegin + kDuration);
    arc.finishAnimations(kBegin + kDuration);
    QCOMPARE(*arc.presented(), arc.model());
    QCOMPARE(delegate.finished, 1);
    QVERIFY(!arc.animationForKey(ArcKey::EndAngle));
}

void TestSliceArc::goesOnFromWhereItIsSeen()
{
    CountingDelegate delegate;
    SliceArc arc;
    arc.createAnimationForKey(ArcKey::EndAngle, 1, 2, delegate);
    QCOMPARE(arc.animationForKey(ArcKey::EndAngle)->fromValue(), 1.0); // it is not on screen
    arc.beginAnimations(kBegin, kDuration);
    arc.advance(kBegin + kDuration / 4);
    const double seen = (*arc.presented())[1];
    arc.createAnimationForKey(ArcKey::EndAngle, 0, 6, delegate);
    QCOMPARE(arc.animationForKey(ArcKey::EndAngle)->fromValue(), seen);
    QCOMPARE(delegate.interrupted, 1);
}

void TestSliceArc::keepsItsGoalWhenItIsStopped()
{
    CountingDelegate delegate;
    SliceArc arc({1, 1});
    arc.createAnimationForKey(ArcKey::EndAngle, 1, 3, delegate);
    arc.beginAnimations(kBegin, kDuration);
    arc.removeAllAnimations();
    QCOMPARE(delegate.interrupted, 1);
    QCOMPARE(arc.angle(ArcKey::EndAngle), 3.0);
    arc.advance(kBegin + kDuration / 4);
    QCOMPARE((*arc.presented())[1], 3.0);
}

void TestSliceArc::jumpsWithoutAnimation()
{
    CountingDelegate delegate;
    SliceArc arc({1, 2});
    arc.beginAnimations(kBegin, kDuration);
    arc.setAngle(ArcKey::StartAngle, 1.5);
    QCOMPARE((*arc.presented())[0], 1.5);
    arc.createAnimationForKey(ArcKey::EndAngle, 2, 4, delegate);
    arc.beginAnimations(kBegin, kDuration);
    arc.setAngle(ArcKey::EndAngle, 5); // the running one goes on
    QCOMPARE((*arc.presented())[1], 2.0);
}

VANTOR_GUI_TEST_MAIN(TestSliceArc)
#include "tst_SliceArc.moc"
