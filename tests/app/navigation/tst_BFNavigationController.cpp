#include "app/navigation/BFNavigationController.h"

#include "tests/app/navigation/RecordingPage.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"

#include <stdexcept>

/// The stack itself and its changes without animation; fades stand in tst_NavigationFades.
class TestBFNavigationController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void beginsWithItsRoot();
    void makesAPlainRootWhereThereIsNone();
    void pushes();
    void tellsInOrder();
    void writesItsNameToTheLogOnce();
    void neverPopsTheRoot();
    void pops();
    void popsToAController();
    void popsToNothingElse();
    void popsToTheRoot();
    void replacesTheStack();
    void staysWhereTheTopStaysTheSame();
    void holdsNothingMissing();
    void asksOnlyThoseThatAnswer();
    void worksWithoutADelegate();
    void keepsTheFrameOfThePage();
    void growsItsPagesWithItself();
    void growsOtherFramesInProportion();
    void givesBackTheViewsOfItsPages();
    void takesOverAPageFromAnotherStack();
};

namespace {

QList<ViewController *> list(std::initializer_list<ViewController *> controllers)
{
    return controllers;
}

} // namespace

void TestBFNavigationController::beginsWithItsRoot()
{
    Calls calls;
    RecordingPage root("root", calls);
    BFNavigationController navigation(QRect(10, 20, 300, 200), &root);
    QCOMPARE(navigation.viewControllers(), list({&root}));
    QCOMPARE(navigation.topViewController(), &root);
    QCOMPARE(navigation.visibleViewController(), &root);
    QCOMPARE(navigation.view()->geometry(), QRect(10, 20, 300, 200));
    QCOMPARE(root.view()->parentWidget(), navigation.view());
    QCOMPARE(root.view()->geometry(), QRect(0, 0, 300, 200));
    QCOMPARE(calls, Calls{QStringLiteral("root willAppear NO")});
}

void TestBFNavigationController::makesAPlainRootWhereThereIsNone()
{
    BFNavigationController navigation(QRect(0, 0, 300, 200), nullptr);
    QCOMPARE(navigation.viewControllers().size(), 1);
    QVERIFY(navigation.topViewController());
    QCOMPARE(navigation.topViewController()->view()->geometry(), QRect(0, 0, 300, 200));

    BFNavigationController bare;
    QCOMPARE(bare.viewControllers().size(), 1);
    QVERIFY(bare.view()->size().isEmpty());
}

void TestBFNavigationController::pushes()
{
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::No);
    QCOMPARE(wizard.navigation.viewControllers(), list({&wizard.a, &wizard.b}));
    QCOMPARE(wizard.navigation.visibleViewController(), &wizard.b);
    QVERIFY(wizard.isShown(wizard.b));
    QVERIFY(!wizard.a.view()->parentWidget()); // removed, not hidden
}

void TestBFNavigationController::tellsInOrder()
{
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::No);
    QCOMPARE(wizard.calls,
             (Calls{QStringLiteral("delegate willShow NO"), QStringLiteral("B willAppear NO"),
                    QStringLiteral("A willDisappear NO"), QStringLiteral("delegate didShow NO"),
                    QStringLiteral("B didAppear NO"), QStringLiteral("A didDisappear NO")}));
    QCOMPARE(wizard.delegate.shown(), &wizard.b);
}

void TestBFNavigationController::writesItsNameToTheLogOnce()
{
    Wizard wizard;
    const LogRecorder log;
    wizard.navigation.pushViewController(&wizard.b, Animated::No);
    QCOMPARE(log.lines(), QStringList{QStringLiteral("navigateFromViewController")});
}

void TestBFNavigationController::neverPopsTheRoot()
{
    Wizard wizard;
    QVERIFY(!wizard.navigation.popViewController(Animated::Yes));
    QVERIFY(!wizard.navigation.popViewController(Animated::No));
    QVERIFY(wizard.navigation.popToRootViewController(Animated::Yes).isEmpty());
    QVERIFY(wizard.isShown(wizard.a));
    QVERIFY(wizard.calls.isEmpty());
    QCOMPARE(wizard.gray(), 0);
}

void TestBFNavigationController::pops()
{
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::No);
    QCOMPARE(wizard.navigation.popViewController(Animated::No), &wizard.b);
    QCOMPARE(wizard.navigation.viewControllers(), list({&wizard.a}));
    QVERIFY(wizard.isShown(wizard.a));
    QVERIFY(!wizard.isShown(wizard.b));
}

void TestBFNavigationController::popsToAController()
{
    Wizard wizard;
    wizard.navigation.setViewControllers({&wizard.a, &wizard.b, &wizard.c});
    QCOMPARE(wizard.navigation.popToViewController(&wizard.a, Animated::No),
             list({&wizard.b, &wizard.c}));
    QCOMPARE(wizard.navigation.viewControllers(), list({&wizard.a}));
    QVERIFY(wizard.isShown(wizard.a));

    // When a controller is there twice, its first position counts.
    wizard.navigation.setViewControllers({&wizard.b, &wizard.a, &wizard.b, &wizard.c});
    QCOMPARE(wizard.navigation.popToViewController(&wizard.b, Animated::No),
             list({&wizard.a, &wizard.b, &wizard.c}));
    QCOMPARE(wizard.navigation.viewControllers(), list({&wizard.b}));
}

void TestBFNavigationController::popsToNothingElse()
{
    Wizard wizard;
    wizard.navigation.pushViewController(&wizard.b, Animated::No);
    wizard.calls.clear();
    for (const Animated animated : {Animated::No, Animated::Yes}) {
        QVERIFY(wizard.navigation.popToViewController(&wizard.b, animated).isEmpty()); // the top
        QVERIFY(wizard.navigation.popToViewController(&wizard.c, animated).isEmpty()); // absent
        QVERIFY(wizard.navigation.popToViewController(nullptr, animated).isEmpty());
    }
    QCOMPARE(wizard.navigation.viewControllers(), list({&wizard.a, &wizard.b}));
    QVERIFY(wizard.calls.isEmpty());
}

void TestBFNavigationController::popsToTheRoot()
{
    Wizard wizard;
    wizard.navigation.setViewControllers({&wizard.a, &wizard.b, &wizard.c});
    wizard.calls.clear();
    QCOMPARE(wizard.navigation.popToRootViewController(Animated::No), list({&wizard.b, &wizard.c}));
    QCOMPARE(wizard.navigation.viewControllers(), list({&wizard.a}));
    QVERIFY(wizard.calls.contains(QStringLiteral("C willDisappear NO")));
    QVERIFY(!wizard.calls.contains(QStringLiteral("B willDisappear NO")));
}

void TestBFNavigationController::replacesTheStack()
{
    Wizard wizard;
    wizard.navigation.setViewControllers({&wizard.b, &wizard.c});
    QCOMPARE(wizard.navigation.viewControllers(), list({&wizard.b, &wizard.c}));
    QVERIFY(wizard.isShown(wizard.c));
    QVERIFY(wizard.calls.contains(QStringLiteral("A didDisappear NO")));
    QVERIFY(!wizard.calls.contains(QStringLiteral("B willAppear NO")));
}

void TestBFNavigationController::staysWhereTheTopStaysTheSame()
{
    Wizard wizard;
    wizard.navigation.setViewControllers({&wizard.b, &wizard.a});
    QVERIFY(wizard.isShown(wizard.a));
    QCOMPARE(wizard.gray(), 0);
}

void TestBFNavigationController::holdsNothingMissing()
{
    Wizard wizard;
    QVERIFY_THROWS_EXCEPTION(std::invalid_argument,
                             wizard.navigation.pushViewController(nullptr, Animated::Yes));
    QVERIFY_THROWS_EXCEPTION(std::invalid_argument, wizard.navigation.setViewControllers({}));
    QVERIFY_THROWS_EXCEPTION(std::invalid_argument,
                             wizard.navigation.setViewControllers({&wizard.b, nullptr}));
    QCOMPARE(wizard.navigation.viewControllers(), list({&wizard.a}));
    QVERIFY(wizard.calls.isEmpty());
}

void TestBFNavigationController::asksOnlyThoseThatAnswer()
{
    Wizard wizard;
    ViewController plain;
    wizard.navigation.pushViewController(&plain, Animated::No);
    QCOMPARE(plain.view()->parentWidget(), wizard.navigation.view());
    QCOMPARE(wizard.calls,
             (Calls{QStringLiteral("delegate willShow NO"), QStringLiteral("A willDisappear NO"),
                    QStringLiteral("delegate didShow NO"), QStringLiteral("A didDisappear NO")}));
}

void TestBFNavigationController::worksWithoutADelegate()
{
    Wizard wizard;
    BFNavigationControllerDelegate silent; // answers neither call
    wizard.navigation.setDelegate(&silent);
    wizard.navigation.pushViewController(&wizard.b, Animated::No);
    wizard.navigation.setDelegate(nullptr);
    QVERIFY(!wizard.navigation.delegate());
    wizard.navigation.popViewController(Animated::No);
    QVERIFY(wizard.isShown(wizard.a));
}

void TestBFNavigationController::keepsTheFrameOfThePage()
{
    Wizard wizard;
    wizard.b.view()->setGeometry(5, 6, 70, 80);
    wizard.navigation.pushViewController(&wizard.b, Animated::No);
    QCOMPARE(wizard.b.view()->geometry(), QRect(5, 6, 70, 80));
}

void TestBFNavigationController::growsItsPagesWithItself()
{
    Wizard wizard;
    for (const QSize size : {QSize(733, 517), QSize(91, 67), QSize(900, 700)}) {
        wizard.navigation.view()->resize(size);
        QCOMPARE(wizard.a.view()->geometry(), QRect(QPoint(), size));
    }
    BFNavigationController bare(QRect(), &wizard.b);
    bare.view()->resize(300, 200);
    bare.view()->show();
    QCOMPARE(wizard.b.view()->geometry(), QRect(0, 0, 300, 200));
}

void TestBFNavigationController::growsOtherFramesInProportion()
{
    Wizard wizard;
    wizard.b.view()->setGeometry(20, 40, 100, 80); // of 200 by 160
    wizard.navigation.pushViewController(&wizard.b, Animated::No);
    wizard.navigation.view()->resize(400, 480);
    QCOMPARE(wizard.b.view()->geometry(), QRect(40, 120, 200, 240));
}

/// A page's view outlives the stack that showed it, and is shown by the next one.
void TestBFNavigationController::givesBackTheViewsOfItsPages()
{
    Calls calls;
    RecordingPage page("page", calls);
    const QPointer<QWidget> view = page.view();
    {
        BFNavigationController navigation(QRect(0, 0, 50, 50), &page);
        QCOMPARE(view->parentWidget(), navigation.view());
    }
    QVERIFY(view);
    QCOMPARE(view->parentWidget(), nullptr);

    auto *const window = new QWidget;
    auto navigation = std::make_unique<BFNavigationController>(QRect(0, 0, 50, 50), &page);
    navigation->view()->setParent(window);
    delete window; // with the stack's own view in it
    QVERIFY(view);
    QCOMPARE(page.view(), view);
}

void TestBFNavigationController::takesOverAPageFromAnotherStack()
{
    Wizard wizard;
    auto next = std::make_unique<BFNavigationController>(QRect(0, 0, 90, 80), &wizard.a);
    QCOMPARE(wizard.a.view()->parentWidget(), next->view());
    QCOMPARE(wizard.a.view()->size(), QSize(90, 80));
    wizard.navigation.view()->resize(500, 500); // this stack no longer has the page
    QCOMPARE(wizard.a.view()->size(), QSize(90, 80));
}

VANTOR_GUI_TEST_MAIN(TestBFNavigationController)
#include "tst_BFNavigationController.moc"
