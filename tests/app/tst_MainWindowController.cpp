#include "app/MainWindowController.h"
#include "platform/system/HostSystemCalls.h"

#include "app/grant/ResourceManager.h"
#include "app/pages/DiskInfoViewController.h"
#include "app/pings/StatsUpdater.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "chart/PieChart.h"
#include "platform/look/ViewAlpha.h"
#include "prefs/window/ColorWindow.h"
#include "tests/support/calls/SlowDisk.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"

#include "platform/files/FolderGrant.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>

namespace {

class SilentStats final : public StatsUpdater
{
public:
    void updateStatsForURLString(const QString &) override {}
};

/// Records the data that a page has whenever its button goes on or off.
class DataAtChange final : public QObject
{
public:
    DataAtChange(const VNTViewController &page, QWidget &button) : m_page(page)
    {
        button.installEventFilter(this);
    }
    QVariantList values() const { return m_values; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::EnabledChange)
            m_values.append(QVariantList{m_page.data()});
        return QObject::eventFilter(watched, event);
    }

private:
    const VNTViewController &m_page;
    QVariantList m_values;
};

} // namespace

class TestMainWindowController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void opensOnTheFirstPageWithoutGrant();
    void movesOnByItselfOnceTheGrantIsStored();
    void opensOnTheDiskWithAGrant();
    void tellsTheFirstPageOnceThatItAppears();
    void makesThePagesOnceInTheirOrder();
    void handsDataOverBetweenAppearing();
    void movesOnOnceHoweverOftenStartIsPressed();
    void ignoresBackWhereThereIsNoPredecessor();
    void hearsNoPageButTheOneThatIsShown();
    void goesBackThroughTheMenu();
    void startsOverWhenTheHomeFolderIsReset();
    void leavesTheShownPageAtAReset();
    void keepsAFadedPageTransparentAfterAReset();
    void asksAgainWhenTheGrantLeadsNowhere();
    void entersNoSlicesWithoutAUsableGrant();
    void tellsThatANewFolderNeedsARestart();
    void answersWhileTheHomeDoesNot();
    void endsWhileTheHomeDoesNotAnswer();
    void goesNowhereWhenThePageIsLeftMeanwhile_data();
    void goesNowhereWhenThePageIsLeftMeanwhile();

private:
    void makeController(LabelController::Reader readVolume = PageFixture::madeVolume());
    bool waitForPage(const VNTViewController &page);

    std::unique_ptr<PageFixture> m_fixture;
    SlowDisk m_disk;
    SilentStats m_stats;
    ExcludedFilesChangedNotification m_excludedFilesChanged;
    int m_restarts = 0;
    std::unique_ptr<MainWindowController> m_controller;
};

void TestMainWindowController::init()
{
    m_restarts = 0;
    m_fixture = std::make_unique<PageFixture>();
    m_fixture->beginRun(m_disk.calls());
}

void TestMainWindowController::cleanup()
{
    m_disk.answer();
    m_controller.reset();
    awaitBackgroundThreads(); // its pages may still have measured
    m_fixture.reset();
    m_disk.takeAskedHere();
}

void TestMainWindowController::makeController(LabelController::Reader readVolume)
{
    m_controller = std::make_unique<MainWindowController>(
        MainWindowController::Services{.loader = m_fixture->loader(),
                                       .defaults = m_fixture->defaults(),
                                       .stats = m_stats,
                                       .workspace = m_fixture->workspace(),
                                       .calls = m_disk.calls(),
                                       .access = ResourceManager::access(),
                                       .excludedFilesChanged = m_excludedFilesChanged,
                                       .addresses = {},
                                       .realHomeDirectory = [this] { return m_fixture->home(); },
                                       .readVolume = std::move(readVolume),
                                       .restart = [this] { ++m_restarts; }});
    m_controller->showWindow();
}

bool TestMainWindowController::waitForPage(const VNTViewController &page)
{
    return QTest::qWaitFor([&] { return m_controller->currentViewController() == &page; }) &&
           QTest::qWaitFor(
               [&] { return const_cast<VNTViewController &>(page).view()->isVisible(); });
}

void TestMainWindowController::opensOnTheFirstPageWithoutGrant()
{
    makeController();
    QCOMPARE(m_controller->currentViewController(), &m_controller->folderSelectPage());
    QVERIFY(!hasSheet(m_controller->window()));
}

void TestMainWindowController::movesOnByItselfOnceTheGrantIsStored()
{
    makeController();
    m_fixture->grantHome();
    QElapsedTimer sinceGrant;
    sinceGrant.start();
    m_controller->folderSelectPage().updateUI();
    QVERIFY(waitForPage(m_controller->diskInfoPage()));
    QVERIFY(sinceGrant.elapsed() >= 1000);
}

void TestMainWindowController::opensOnTheDiskWithAGrant()
{
    m_fixture->grantHome();
    makeController();
    QCOMPARE(m_controller->currentViewController(), &m_controller->diskInfoPage());
    QVERIFY(m_controller->diskInfoPage().startButton()->isEnabled());
    QCOMPARE(m_controller->navigationController().viewControllers().size(), 1);
    QCOMPARE(m_controller->diskInfoPage().view()->size(), QSize(860, 680));
}

void TestMainWindowController::tellsTheFirstPageOnceThatItAppears()
{
    m_fixture->grantHome();
    // The disk page reads the volume after it has appeared. Its button is off until then, from the
    // moment when the page is about to appear.
    QList<bool> buttonStates;
    makeController([&buttonStates] {
        for (const QWidget *widget : QApplication::allWidgets()) {
            if (qobject_cast<const StartButton *>(widget))
                buttonStates.append(widget->isEnabled());
        }
        return VolumeSizes{1000, 250};
    });
    QTRY_COMPARE(alphaValue(*m_controller->diskInfoPage().labelController().freeLabel()), 1.0);
    QCOMPARE(buttonStates, QList<bool>{false});
    QVERIFY(m_controller->diskInfoPage().startButton()->isEnabled());
}

void TestMainWindowController::makesThePagesOnceInTheirOrder()
{
    makeController();
    QStringList names;
    for (const VNTViewController *page : m_controller->viewControllers()) {
        names.append(QString::fromLatin1(page->metaObject()->className()));
        QCOMPARE(page->delegate(), m_controller.get());
    }
    QCOMPARE(names, QStringList({QStringLiteral("FolderSelectViewController"),
                                 QStringLiteral("DiskInfoViewController"),
                                 QStringLiteral("FreeSpaceViewController"),
                                 QStringLiteral("FinalViewController")}));
}

void TestMainWindowController::handsDataOverBetweenAppearing()
{
    m_fixture->grantHome();
    makeController();
    m_controller->navigationController().pushViewController(&m_controller->freeSpacePage(),
                                                            Animated::No);
    const FinalViewController &result = m_controller->finalPage();
    auto *button = m_controller->finalPage().view()->findChild<StartButton *>();
    button->setEnabled(true);
    DataAtChange beforeAndAfter(result, *button); // off when about to appear, on when it did
    m_controller->willGoForward(m_controller->freeSpacePage(), true, qint64{5'000'000});
    QCOMPARE(result.data(), QVariant(qint64{5'000'000}));
    QVERIFY(waitForPage(m_controller->finalPage()));
    QTRY_COMPARE(m_controller->finalPage().sizeLabel()->text(), QStringLiteral("5 MB"));
    QCOMPARE(beforeAndAfter.values(), QVariantList({QVariant(), qint64{5'000'000}}));
}

void TestMainWindowController::movesOnOnceHoweverOftenStartIsPressed()
{
    m_fixture->makeFile(".Trash/a", 4321);
    m_fixture->grantHome();
    makeController();
    QTest::mouseClick(m_controller->diskInfoPage().startButton(), Qt::LeftButton);
    QTest::mouseClick(m_controller->diskInfoPage().startButton(), Qt::LeftButton);
    m_controller->diskInfoPage().next();
    QVERIFY(waitForPage(m_controller->freeSpacePage()));
    QCOMPARE(m_controller->navigationController().viewControllers().size(), 2);
    QTRY_COMPARE(m_controller->freeSpacePage().selection().totalSize(), 4321);
}

void TestMainWindowController::ignoresBackWhereThereIsNoPredecessor()
{
    m_fixture->grantHome();
    makeController();
    m_controller->willGoForward(m_controller->diskInfoPage(), false, {});
    m_controller->willGoForward(m_controller->folderSelectPage(), false, {});
    m_controller->goBack();
    QCOMPARE(m_controller->currentViewController(), &m_controller->diskInfoPage());
}

void TestMainWindowController::hearsNoPageButTheOneThatIsShown()
{
    m_fixture->grantHome();
    makeController();
    for (VNTViewController *page : m_controller->viewControllers()) {
        if (page != m_controller->currentViewController())
            m_controller->willGoForward(*page, true, {});
        QCOMPARE(m_controller->navigationController().viewControllers().size(), 1);
        QCOMPARE(m_controller->currentViewController(), &m_controller->diskInfoPage());
    }
}

void TestMainWindowController::goesBackThroughTheMenu()
{
    m_fixture->grantHome();
    makeController();
    m_controller->diskInfoPage().next();
    QVERIFY(waitForPage(m_controller->freeSpacePage()));
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
    m_controller->goBack();
    QVERIFY(waitForPage(m_controller->diskInfoPage()));
}

void TestMainWindowController::startsOverWhenTheHomeFolderIsReset()
{
    m_fixture->grantHome();
    makeController();
    m_controller->resetHomeFolder();
    QCOMPARE(m_controller->currentViewController(), &m_controller->folderSelectPage());
    QVERIFY(!m_fixture->defaults().hasInitializedFolders());
    QVERIFY(m_controller->folderSelectPage().view()->isVisible());
    QCOMPARE(alphaValue(*m_controller->folderSelectPage().view()), 1.0);
}

/// The page does not go on with what it was about to do or to ask.
void TestMainWindowController::leavesTheShownPageAtAReset()
{
    m_fixture->grantHome();
    makeController();
    QTRY_VERIFY(!m_controller->isLookingAtGrant());
    m_controller->diskInfoPage().next();
    FreeSpaceViewController &page = m_controller->freeSpacePage();
    QVERIFY(waitForPage(page));
    QTRY_VERIFY(page.startButton()->isEnabled());
    m_controller->resetHomeFolder();
    QVERIFY(!page.startButton()->isEnabled());
    page.next();
    QVERIFY(!m_controller->isLookingAtGrant()); // it does not even ask whether it may
}

void TestMainWindowController::keepsAFadedPageTransparentAfterAReset()
{
    makeController();
    m_fixture->grantHome();
    m_controller->folderSelectPage().updateUI();
    QVERIFY(waitForPage(m_controller->diskInfoPage()));
    m_controller->resetHomeFolder();
    QVERIFY(m_controller->folderSelectPage().view()->isVisible());
    QCOMPARE(alphaValue(*m_controller->folderSelectPage().view()), 0.0);
}

void TestMainWindowController::asksAgainWhenTheGrantLeadsNowhere()
{
    m_fixture->defaults().setData(VNTHomeFolderString, QByteArray("no grant"));
    makeController();
    setAlphaValue(*m_controller->folderSelectPage().view(), 0); // as when it was left before
    QTRY_VERIFY(hasSheet(m_controller->window()));
    QVERIFY(sheetText(m_controller->window()).contains(QStringLiteral("damaged")));
    QVERIFY(pressSheetButton(m_controller->window(), QStringLiteral("Choose Again…")));
    QTRY_COMPARE(m_controller->currentViewController(), &m_controller->folderSelectPage());
    QCOMPARE(alphaValue(*m_controller->folderSelectPage().view()), 1.0);
    QTRY_VERIFY(hasSheet(m_controller->window())); // the open panel
}

void TestMainWindowController::entersNoSlicesWithoutAUsableGrant()
{
    m_fixture->grantHome();
    makeController();
    QVERIFY(QDir().rename(QFile::decodeName(m_fixture->home()),
                          QFile::decodeName(m_fixture->home() + "-moved")));
    QVERIFY(QDir().mkdir(QFile::decodeName(m_fixture->home())));
    m_controller->diskInfoPage().next();
    QTRY_VERIFY(hasSheet(m_controller->window()));
    QVERIFY(pressSheetButton(m_controller->window(), QStringLiteral("Not Now")));
    QCOMPARE(m_controller->currentViewController(), &m_controller->diskInfoPage());
}

void TestMainWindowController::tellsThatANewFolderNeedsARestart()
{
    m_fixture->grantHome();
    makeController();
    QCOMPARE(ResourceManager::homeFolder().path(), m_fixture->home()); // taken into use
    const QByteArray other = m_fixture->folder().makeFolder("anna-old");
    m_fixture->defaults().setData(VNTHomeFolderString, *makeGrant(hostSystemCalls(), other));
    m_controller->whenGrantIsUsable([] { QFAIL("it is another folder"); });
    QTRY_VERIFY(hasSheet(m_controller->window()));
    QVERIFY(pressSheetButton(m_controller->window(), QStringLiteral("Restart Vantor")));
    QTRY_COMPARE(m_restarts, 1);
}

/// The main thread asks nothing of the home except a status: on a dead server each call would
/// freeze the window.
void TestMainWindowController::answersWhileTheHomeDoesNot()
{
    m_fixture->grantHome();
    m_disk.hang();
    makeController();
    QTRY_COMPARE(m_disk.waiting(), 1);
    QVERIFY(m_controller->window().isVisible());
    QTest::mouseClick(m_controller->diskInfoPage().startButton(), Qt::LeftButton);
    QTest::mouseClick(m_controller->diskInfoPage().startButton(), Qt::LeftButton);
    QCoreApplication::processEvents();
    QCOMPARE(m_disk.waiting(), 1);
    QCOMPARE(m_controller->currentViewController(), &m_controller->diskInfoPage());
    m_disk.answer();
    QVERIFY(waitForPage(m_controller->freeSpacePage()));
    QCOMPARE(m_controller->navigationController().viewControllers().size(), 2);
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

/// A dead disk keeps nothing alive whose window was closed.
void TestMainWindowController::endsWhileTheHomeDoesNotAnswer()
{
    m_fixture->grantHome();
    m_disk.hang();
    makeController();
    QTest::mouseClick(m_controller->diskInfoPage().startButton(), Qt::LeftButton);
    QTRY_COMPARE(m_disk.waiting(), 1);
    m_controller.reset();
    QCOMPARE(m_disk.waiting(), 1);
}

void TestMainWindowController::goesNowhereWhenThePageIsLeftMeanwhile_data()
{
    using Leave = std::function<void(MainWindowController &)>;
    QTest::addColumn<Leave>("leave");
    QTest::addRow("reset") << Leave([](auto &controller) { controller.resetHomeFolder(); });
    QTest::addRow("back") << Leave([](auto &controller) { controller.goBack(); });
}

void TestMainWindowController::goesNowhereWhenThePageIsLeftMeanwhile()
{
    QFETCH(std::function<void(MainWindowController &)>, leave);
    makeController();
    m_fixture->grantHome();
    m_controller->folderSelectPage().updateUI();
    QVERIFY(waitForPage(m_controller->diskInfoPage()));
    QTRY_VERIFY(!m_controller->isLookingAtGrant());
    m_disk.hang();
    m_controller->diskInfoPage().next();
    QTRY_COMPARE(m_disk.waiting(), 1);
    leave(*m_controller);
    QCOMPARE(m_controller->currentViewController(), &m_controller->folderSelectPage());
    m_disk.answer();
    QTRY_VERIFY(!m_controller->isLookingAtGrant());
    QCOMPARE(m_controller->currentViewController(), &m_controller->folderSelectPage());
    QVERIFY(!hasSheet(m_controller->window()));
}

VANTOR_GUI_TEST_MAIN(TestMainWindowController)
#include "tst_MainWindowController.moc"
