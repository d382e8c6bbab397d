#include "app/grant/ResourceManager.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "chart/PieChart.h"
#include "platform/look/ViewAlpha.h"
#include "platform/sheet/Sheet.h"
#include "platform/system/HostSystemCalls.h"
#include "prefs/popover/MessageField.h"
#include "prefs/popover/Popover.h"
#include "prefs/tutorial/DemoWindowController.h"
#include "slices/page/FreeSpaceViewController.h"
#include "slices/page/SliceHoverButtons.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/RecordingPageDelegate.h"
#include "tests/support/page/RunningFade.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/SeenAfter.h"
#include "widgets/ImageButton.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTimer>

using namespace std::chrono_literals;

/// How the page of the slices looks when it comes in.
class TestFreeSpaceAppearance final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void hidesItsLegendUntilItAppears();
    void fadesItsControlsInWithinASecond();
    void keepsTheButtonDisabledWhileItAppears();
    void growsThePieAnewAtEachAppearance();
    void drawsTheShadowOfThePie();
    void readsTheSizesAnewAtEachAppearance();
    void writesTheTotalToTheLog();
    void showsTheTutorialAfterASecond();
    void showsTheTutorialBeforeLong();
    void showsNoTutorialThatWasDeclined();
    void showsNoTutorialOnceItHasLeftTheWindow();
    void staysAwayWhenItIsLeftBeforeItHasComeIn();
    void explainsInANarrowPopoverBelowTheButton();

private:
    void appear();

    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<FreeSpaceViewController> m_page;
    RecordingPageDelegate m_delegate;
    ExcludedFilesChangedNotification m_excludedFilesChanged;
    VolumeSizes m_volume;
};

void TestFreeSpaceAppearance::init()
{
    m_volume = {1000, 250};
    m_fixture = std::make_unique<PageFixture>();
    m_fixture->grantHome();
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_page = std::make_unique<FreeSpaceViewController>(
        m_fixture->loader(),
        FreeSpaceViewController::Services{
            m_fixture->defaults(), hostSystemCalls(), ResourceManager::access(),
            m_fixture->workspace(), m_excludedFilesChanged, &ResourceManager::homeFolder,
            [](const auto &then, const auto &) { then(); }, [this] { return m_volume; }});
    m_page->setDelegate(&m_delegate);
    m_page->view()->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page->view()));
}

void TestFreeSpaceAppearance::cleanup()
{
    m_page.reset(); // stops what it measures
    awaitBackgroundThreads();
    m_fixture.reset();
}

void TestFreeSpaceAppearance::appear()
{
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
}

void TestFreeSpaceAppearance::hidesItsLegendUntilItAppears()
{
    const auto *legend = m_page->view()->findChild<QWidget *>(QStringLiteral("legendImageView"));
    QCOMPARE(alphaValue(*legend), 0.0);
    m_page->viewWillAppear(true);
    QCOMPARE(alphaValue(*legend), 1.0);
}

void TestFreeSpaceAppearance::fadesItsControlsInWithinASecond()
{
    appear();
    const auto *legend = m_page->view()->findChild<QWidget *>(QStringLiteral("legendImageView"));
    QVERIFY(isFading(*legend, 1, 1s));
    QVERIFY(isFading(*m_page->startButton(), 1, 1s));
}

void TestFreeSpaceAppearance::keepsTheButtonDisabledWhileItAppears()
{
    m_page->viewWillAppear(true);
    QVERIFY(!m_page->startButton()->isEnabled());
    m_page->viewDidAppear(true);
    QVERIFY(m_page->startButton()->isEnabled());
}

/// Flat until it has grown, as at the first time.
void TestFreeSpaceAppearance::growsThePieAnewAtEachAppearance()
{
    appear();
    QTRY_VERIFY(m_page->pieChart()->didLoad());
    m_page->viewWillDisappear(true);
    appear();
    QVERIFY(!m_page->pieChart()->didLoad());
    QTRY_VERIFY(m_page->pieChart()->didLoad());
}

void TestFreeSpaceAppearance::drawsTheShadowOfThePie()
{
    QVERIFY(!m_page->pieChart()->drawShadow());
    appear();
    QVERIFY(m_page->pieChart()->drawShadow());
}

void TestFreeSpaceAppearance::readsTheSizesAnewAtEachAppearance()
{
    const auto *freeLabel = m_page->view()->findChild<TextField *>(QStringLiteral("freeLabel"));
    appear();
    QCOMPARE(freeLabel->text(), QStringLiteral("250 bytes"));
    m_page->viewWillDisappear(true);
    m_volume = {1000, 900};
    appear();
    QCOMPARE(freeLabel->text(), QStringLiteral("900 bytes"));
}

void TestFreeSpaceAppearance::writesTheTotalToTheLog()
{
    m_fixture->makeFile(".Trash/a", 4321);
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4321);
    const LogRecorder log;
    m_page->updateButtonText();
    QCOMPARE(log.lines(), QStringList{QStringLiteral("4321")});
}

void TestFreeSpaceAppearance::showsTheTutorialBeforeLong()
{
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, false);
    appear();
    const auto isShown = [this] { return hasSheet(*m_page->view()); };
    QVERIFY(!seenAfter(900ms, isShown));
    QVERIFY(seenAfter(150ms, isShown));
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("OK")));
}

void TestFreeSpaceAppearance::showsNoTutorialThatWasDeclined()
{
    appear();
    QVERIFY(!seenAfter(1100ms, [this] { return hasSheet(*m_page->view()); }));
}

void TestFreeSpaceAppearance::explainsInANarrowPopoverBelowTheButton()
{
    appear();
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::Cache));
    const auto *buttons = m_page->pieChart()->findChild<SliceHoverButtons *>();
    QTest::mouseClick(buttons->infoButton(), Qt::LeftButton);
    const auto *popover = m_page->view()->window()->findChild<Popover *>();
    QVERIFY(popover);
    QCOMPARE(popover->placement().edge, Qt::BottomEdge);
    const double width = popover->findChild<MessageField *>()->textSize().width();
    QVERIFY2(width > 150 && width <= 200, qPrintable(QString::number(width)));
}

void TestFreeSpaceAppearance::showsTheTutorialAfterASecond()
{
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, false);
    appear();
    QElapsedTimer sinceAppearance;
    sinceAppearance.start();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    QVERIFY(sinceAppearance.elapsed() >= 900);
    QCOMPARE(sheetPanel(*m_page->view()), m_page->demoWindowController().window());
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("OK")));
}

void TestFreeSpaceAppearance::showsNoTutorialOnceItHasLeftTheWindow()
{
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, false);
    appear();
    QTimer later; // started after the page's own, it fires after it
    later.setSingleShot(true);
    QSignalSpy fired(&later, &QTimer::timeout);
    later.start(std::chrono::seconds(1));
    m_page->viewWillDisappear(true);
    m_page->view()->hide();
    QVERIFY(fired.wait());
    QVERIFY(!hasSheet(*m_page->view()));
}

/// The way back is open while the page fades in; the end of the fade comes all the same.
void TestFreeSpaceAppearance::staysAwayWhenItIsLeftBeforeItHasComeIn()
{
    m_page->viewWillAppear(true);
    m_page->viewWillDisappear(true);
    m_page->viewDidAppear(true);
    QVERIFY(!m_page->startButton()->isEnabled());
    m_page->next();
    QVERIFY(!hasSheet(*m_page->view()));
    appear();
    QVERIFY(m_page->startButton()->isEnabled());
}

VANTOR_GUI_TEST_MAIN(TestFreeSpaceAppearance)
#include "tst_FreeSpaceAppearance.moc"
