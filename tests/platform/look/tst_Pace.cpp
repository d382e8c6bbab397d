#include "platform/look/Pace.h"
#include "platform/look/ViewAlpha.h"
#include "tests/support/run/GuiTestMain.h"

#include <QWidget>

using namespace std::chrono_literals;

class TestPace final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setPace(1); }

    void isAsMeantUnlessTold();
    void goesForAnimations();
    void endsAFadeAtOnceWithNone();
};

void TestPace::isAsMeantUnlessTold()
{
    QCOMPARE(paced(250ms), 250ms);
}

void TestPace::goesForAnimations()
{
    const QWidget widget;
    setPace(2);
    QCOMPARE(animationDuration(widget, 250ms), 500ms);
    setPace(0);
    QCOMPARE(animationDuration(widget, 250ms), 0ms);
}

void TestPace::endsAFadeAtOnceWithNone()
{
    QWidget widget;
    setAlphaValue(widget, 0);
    setPace(0);
    animateAlphaValue(widget, 1);
    QCOMPARE(alphaValue(widget), 1.0);
}

VANTOR_GUI_TEST_MAIN(TestPace)
#include "tst_Pace.moc"
