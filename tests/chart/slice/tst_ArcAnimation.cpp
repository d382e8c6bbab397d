#include "chart/slice/ArcAnimation.h"
#include "tests/support/run/TestMain.h"

#include <cmath>

namespace {

/// The time curve with the control points (0.25, 0.1) and (0.25, 1), solved in steps, without the
/// toolkit.
double eased(double time)
{
    const auto cubic = [](double first, double second, double t) {
        return 3 * (1 - t) * (1 - t) * t * first + 3 * (1 - t) * t * t * second + t * t * t;
    };
    double low = 0;
    double high = 1;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2;
        (cubic(0.25, 0.25, middle) < time ? low : high) = middle;
    }
    return cubic(0.1, 1, low);
}

class Listener final : public ArcAnimationDelegate
{
public:
    QStringList told;

    void animationDidStart(const ArcAnimation &) override { told << QStringLiteral("start"); }
    void animationDidStop(const ArcAnimation &, Completion completion) override
    {
        told << (completion == Completion::Finished ? QStringLiteral("finished")
                                                    : QStringLiteral("interrupted"));
    }
};

} // namespace

class TestArcAnimation final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsTheMediaCurve();
    void standsAtItsStartBeforeItBegins();
    void standsAtItsEndFromItsEndOn();
    void isOverAtOnceWithoutDuration();
    void tellsOfItsStartAndItsEnd();
    void saysNothingOfAnAnimationThatNeverBegan();
};

void TestArcAnimation::followsTheMediaCurve()
{
    Listener listener;
    ArcAnimation animation(2, 5, listener);
    animation.begin(MediaTime(10), MediaTime(0.75));
    for (int percent = 0; percent <= 100; percent += 5) {
        const double time = percent / 100.0;
        const double value = animation.valueAt(MediaTime(10 + 0.75 * time));
        QVERIFY2(std::abs(value - (2 + 3 * eased(time))) < 1e-4, qPrintable(QString::number(time)));
    }
    QVERIFY(std::abs(eased(0.5) - 0.8024) < 1e-4);
}

void TestArcAnimation::standsAtItsStartBeforeItBegins()
{
    Listener listener;
    ArcAnimation animation(2, 5, listener);
    QCOMPARE(animation.valueAt(MediaTime(1e9)), 2.0);
    QVERIFY(!animation.isOverAt(MediaTime(1e9)));
    animation.begin(MediaTime(10), MediaTime(1));
    QCOMPARE(animation.valueAt(MediaTime(9)), 2.0);
    QCOMPARE(animation.valueAt(MediaTime(10)), 2.0);
}

void TestArcAnimation::standsAtItsEndFromItsEndOn()
{
    Listener listener;
    ArcAnimation animation(2, 5, listener);
    animation.begin(MediaTime(10), MediaTime(1));
    QVERIFY(!animation.isOverAt(MediaTime(10.999)));
    QVERIFY(animation.isOverAt(MediaTime(11)));
    QCOMPARE(animation.valueAt(MediaTime(11)), 5.0);
    QCOMPARE(animation.valueAt(MediaTime(99)), 5.0);
}

void TestArcAnimation::isOverAtOnceWithoutDuration()
{
    Listener listener;
    ArcAnimation animation(2, 5, listener);
    animation.begin(MediaTime(10), MediaTime(0));
    QVERIFY(animation.isOverAt(MediaTime(10)));
    QCOMPARE(animation.valueAt(MediaTime(10)), 5.0);
}

void TestArcAnimation::tellsOfItsStartAndItsEnd()
{
    Listener listener;
    ArcAnimation first(2, 5, listener);
    first.begin(MediaTime(10), MediaTime(1));
    first.stop(Completion::Finished);
    QCOMPARE(listener.told, (QStringList{QStringLiteral("start"), QStringLiteral("finished")}));
    ArcAnimation second(2, 5, listener);
    second.begin(MediaTime(10), MediaTime(1));
    second.stop(Completion::Interrupted);
    QCOMPARE(listener.told.last(), QStringLiteral("interrupted"));
}

void TestArcAnimation::saysNothingOfAnAnimationThatNeverBegan()
{
    Listener listener;
    ArcAnimation animation(2, 5, listener);
    animation.stop(Completion::Interrupted);
    QCOMPARE(listener.told, QStringList());
}

VANTOR_TEST_MAIN(TestArcAnimation)
#include "tst_ArcAnimation.moc"
