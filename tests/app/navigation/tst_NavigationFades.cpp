#include "app/navigation/BFNavigationController.h"

#include "platform/look/Pace.h"
#include "platform/look/ViewAlpha.h"
#include "tests/app/navigation/RecordingPage.h"
#include "tests/support/page/RunningFade.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/SeenAfter.h"

#include <QElapsedTimer>
#include <QVariantAnimation>

/// Animated changes of a navigation stack: out, a pause, in.
class TestNavigationFades final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setPace(1); }

    void tellsBeforeAtOnceAndAfterThePause();
    void pausesForThreeQuartersOfASecond();
    void fadesOutThenShowsTheGroundThenFadesIn();
    void leavesThePageThatWentInvisible();
    void staysInvisibleWhenShownWithoutAnimation();
    void staysInvisibleAsTheRootOfAnotherStack();
    void comesBackWithAnAnimation();
    void fillsTheStackWithThePage();
    void writesNothingToTheLog();
    void endsEveryChangeThatOverlaps();
    void turnsBackDuringThePause();
    void forgetsThePauseWhenItDies();
    void survivesAPageThatDiesInThePause_data();
    void survivesAPageThatDiesInThePause();
};

namespace {

bool hasAppeared(const Wizard &wizard, const char *name)
{
    return wizard.calls.contains(callText(QLatin1String(name), "didAppear", true));
}

} // namespace

void TestNavigationFades::tellsBeforeAtOnceAndAfterThePause()
{
    Wizard wizard;
    QElapsedTimer timer;
    timer.start();
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    const Calls before{QStringLiteral("delegate willShow YES"), QStringLiteral("B willAppear YES"),
                       QStringLiteral("A willDisappear YES")};
    QCOMPARE(wizard.calls, before);
    QCOMPARE(wizard.navigation.visibleViewController(), &wizard.b);
    QTRY_VERIFY(wizard.calls.size() > before.size());
    QVERIFY2(timer.elapsed() >= 745, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(wizard.calls, before + Calls({QStringLiteral("delegate didShow YES"),
                                           QStringLiteral("B didAppear YES"),
                                           QStringLiteral("A didDisappear YES")}));
}

void TestNavigationFades::pausesForThreeQuartersOfASecond()
{
    using namespace std::chrono_literals;
    Wizard wizard;
    bool fadesIn = false;
    wizard.b.onDidAppear = [&] { fadesIn = isFading(*wizard.b.view(), 1, 250ms); };
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    QVERIFY(isFading(*wizard.a.view(), 0, 250ms));
    const auto hasCome = [&] { return hasAppeared(wizard, "B"); };
    QVERIFY(!seenAfter(700ms, hasCome));
    QVERIFY(seenAfter(100ms, hasCome));
    QVERIFY(fadesIn);
}

void TestNavigationFades::fadesOutThenShowsTheGroundThenFadesIn()
{
    Wizard wizard;
    int grayOnAppearing = -1;
    wizard.b.onDidAppear = [&] { grayOnAppearing = wizard.gray(); };
    QCOMPARE(wizard.gray(), 0);
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    QCOMPARE(alphaValue(*wizard.b.view()), 0.0);
    auto *const out = wizard.a.view()->findChild<QVariantAnimation *>();
    QVERIFY(out);
    out->setCurrentTime(out->duration() / 2);
    QVERIFY(qAbs(wizard.gray() - 127) < 5);
    QVERIFY(wizard.isShown(wizard.a));
    QTRY_VERIFY(hasAppeared(wizard, "B"));
    QCOMPARE(grayOnAppearing, 255); // the ground, as the new page is about to fade in
    QVERIFY(wizard.isShown(wizard.b));
    QVERIFY(!wizard.isShown(wizard.a));
    QTRY_COMPARE(alphaValue(*wizard.b.view()), 1.0);
    QCOMPARE(wizard.gray(), 0);
}

void TestNavigationFades::leavesThePageThatWentInvisible()
{
    setPace(0);
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    QTRY_VERIFY(hasAppeared(wizard, "B"));
    QCOMPARE(alphaValue(*wizard.a.view()), 0.0);
    QCOMPARE(wizard.a.view()->parentWidget(), nullptr);
}

void TestNavigationFades::staysInvisibleWhenShownWithoutAnimation()
{
    setPace(0);
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    QTRY_VERIFY(hasAppeared(wizard, "B"));
    wizard.navigation.popViewController(Animated::No);
    QVERIFY(wizard.isShown(wizard.a));
    QCOMPARE(alphaValue(*wizard.a.view()), 0.0);
    QCOMPARE(wizard.gray(), 255);
}

void TestNavigationFades::staysInvisibleAsTheRootOfAnotherStack()
{
    setPace(0);
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    QTRY_VERIFY(hasAppeared(wizard, "B"));
    QWidget window;
    window.setPalette(QPalette(Qt::white));
    window.resize(200, 160);
    BFNavigationController next(QRect(0, 0, 200, 160), &wizard.a);
    next.view()->setParent(&window);
    window.show();
    QCOMPARE(wizard.a.view()->parentWidget(), next.view());
    QVERIFY(wizard.a.view()->isVisible());
    QCOMPARE(alphaValue(*wizard.a.view()), 0.0);
    QCOMPARE(qGray(window.grab().toImage().pixel(50, 50)), 255);
    next.view()->setParent(nullptr);
}

void TestNavigationFades::comesBackWithAnAnimation()
{
    setPace(0);
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    QTRY_VERIFY(hasAppeared(wizard, "B"));
    wizard.navigation.popViewController(Animated::Yes);
    QTRY_VERIFY(hasAppeared(wizard, "A"));
    QTRY_COMPARE(alphaValue(*wizard.a.view()), 1.0);
    QCOMPARE(wizard.gray(), 0);
}

void TestNavigationFades::fillsTheStackWithThePage()
{
    setPace(0);
    Wizard wizard;
    wizard.b.view()->setGeometry(5, 6, 70, 80);
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    QCOMPARE(wizard.b.view()->geometry(), QRect(0, 0, 200, 160));
    wizard.navigation.view()->resize(300, 260); // during the pause
    QTRY_VERIFY(hasAppeared(wizard, "B"));
    QCOMPARE(wizard.b.view()->geometry(), QRect(0, 0, 300, 260));
}

void TestNavigationFades::writesNothingToTheLog()
{
    setPace(0);
    Wizard wizard;
    const LogRecorder log;
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    QTRY_VERIFY(hasAppeared(wizard, "B"));
    QCOMPARE(log.lines(), QStringList());
}

void TestNavigationFades::endsEveryChangeThatOverlaps()
{
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    wizard.navigation.pushViewController(&wizard.c, Animated::Yes);
    QCOMPARE(wizard.navigation.viewControllers().size(), 3); // changes at once
    QVERIFY(wizard.calls.contains(QStringLiteral("B willDisappear YES")));
    QTRY_VERIFY(hasAppeared(wizard, "C"));
    QVERIFY(hasAppeared(wizard, "B")); // the first change came to its end as well
    QVERIFY(wizard.calls.contains(QStringLiteral("A didDisappear YES")));
    QVERIFY(wizard.calls.contains(QStringLiteral("B didDisappear YES")));
    QVERIFY(wizard.isShown(wizard.c));
    QVERIFY(!wizard.isShown(wizard.b));
    QVERIFY(!wizard.isShown(wizard.a));
    QTRY_COMPARE(wizard.gray(), 0);
}

void TestNavigationFades::turnsBackDuringThePause()
{
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::Yes);
    QTRY_COMPARE(alphaValue(*wizard.a.view()), 0.0);
    QCOMPARE(wizard.navigation.popViewController(Animated::Yes), &wizard.b);
    QTRY_VERIFY(hasAppeared(wizard, "A"));
    QVERIFY(wizard.isShown(wizard.a));
    QVERIFY(!wizard.isShown(wizard.b));
    QTRY_COMPARE(wizard.gray(), 0);
}

void TestNavigationFades::forgetsThePauseWhenItDies()
{
    Calls calls;
    RecordingPage a("A", calls);
    RecordingPage b("B", calls);
    auto navigation = std::make_unique<BFNavigationController>(QRect(0, 0, 50, 50), &a);
    navigation->pushViewController(&b, Animated::Yes);
    navigation.reset();
    BFNavigationController next(QRect(0, 0, 50, 50), &a);
    calls.clear();
    next.pushViewController(&b, Animated::Yes); // ends after the forgotten one would have
    QTRY_VERIFY(calls.contains(QStringLiteral("A didDisappear YES")));
    QCOMPARE(calls.count(QStringLiteral("B didAppear YES")), 1);
}

void TestNavigationFades::survivesAPageThatDiesInThePause_data()
{
    QTest::addColumn<bool>("isIncoming");
    QTest::addRow("the one that goes") << false;
    QTest::addRow("the one that comes") << true;
}

void TestNavigationFades::survivesAPageThatDiesInThePause()
{
    setPace(0);
    QFETCH(bool, isIncoming);
    Calls calls;
    RecordingPage last("last", calls);
    auto from = std::make_unique<RecordingPage>("from", calls);
    auto to = std::make_unique<RecordingPage>("to", calls);
    BFNavigationController navigation(QRect(0, 0, 50, 50), from.get());
    navigation.pushViewController(to.get(), Animated::Yes);
    navigation.setViewControllers({&last}, Animated::Yes);
    (isIncoming ? to : from).reset();
    QTRY_VERIFY(calls.contains(QStringLiteral("last didAppear YES")));
    QCOMPARE(last.view()->parentWidget(), navigation.view());
    QCOMPARE(calls.contains(QStringLiteral("to didAppear YES")), !isIncoming);
}

VANTOR_GUI_TEST_MAIN(TestNavigationFades)
#include "tst_NavigationFades.moc"
