#include "app/grant/ResourceManager.h"
#include "app/pages/DiskInfoViewController.h"
#include "app/settings/SettingsKeys.h"
#include "prefs/popover/MessageField.h"
#include "prefs/popover/Popover.h"
#include "prefs/window/ColorWindow.h"
#include "slices/page/SliceHoverButtons.h"
#include "tests/journeys/JourneyFixture.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/ImageButton.h"

#include <QSignalSpy>
#include <QTimer>

/// What the windows around the slices do for a user: the tutorial, the popovers, the window itself.
class TestWindowsJourney final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanup();

    void showsADeclinedTutorialNoMore();
    void showsTheTutorialAgainUnlessDeclined();
    void explainsASliceUntilTheUserClicksElsewhere();
    void closesThePopoverOnEscape();
    void showsASliceInTheFileManager();
    void isDraggedWithAllThatItHolds();

private:
    Popover *openPopover(SliceKind kind);
    void click(const QWidget &widget);
    bool goBackAndForth();

    std::unique_ptr<JourneyFixture> m_fixture;
};

void TestWindowsJourney::initTestCase_data()
{
    addKindsOfHomes();
}

void TestWindowsJourney::initTestCase()
{
    QApplication::setStyle(new StillStyle);
}

void TestWindowsJourney::init()
{
    QFETCH_GLOBAL(const HomeKind, kind);
    m_fixture = std::make_unique<JourneyFixture>(kind);
}

void TestWindowsJourney::cleanup()
{
    m_fixture->quit();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

void TestWindowsJourney::click(const QWidget &widget)
{
    QTest::mouseClick(widget.window()->windowHandle(), Qt::LeftButton, {},
                      widget.mapTo(widget.window(), widget.rect().center()));
}

/// Points at the slice and presses the button that explains it.
Popover *TestWindowsJourney::openPopover(SliceKind kind)
{
    Journey &journey = m_fixture->journey();
    return journey.hoverSlice(kind) ? journey.openPopover() : nullptr;
}

/// To the disk and to the slices again.
bool TestWindowsJourney::goBackAndForth()
{
    Journey &journey = m_fixture->journey();
    journey.window().activateWindow(); // no popup gives it back on a screen without window manager
    if (!QTest::qWaitForWindowActive(&journey.window()))
        return false;
    QTest::keyClick(journey.window().windowHandle(), Qt::Key_Left, Qt::AltModifier);
    return journey.waitForPage(journey.controller().diskInfoPage()) && journey.pressStart() &&
           journey.waitForPage(journey.controller().freeSpacePage());
}

void TestWindowsJourney::showsADeclinedTutorialNoMore()
{
    m_fixture->start(JourneyFixture::Tutorial::Shown);
    QVERIFY(m_fixture->reachSlices());
    QVERIFY(m_fixture->journey().waitForSheet());
    QVERIFY(m_fixture->journey().declineTutorial());
    for (const bool isAnotherRun : {false, true}) {
        if (isAnotherRun) {
            m_fixture->start(JourneyFixture::Tutorial::Shown);
            QVERIFY(m_fixture->reachSlices());
        } else {
            QVERIFY(goBackAndForth());
        }
        QTimer later; // started after the page's timer, it fires after that
        later.setSingleShot(true);
        const QSignalSpy fired(&later, &QTimer::timeout);
        later.start(std::chrono::seconds(1));
        QTRY_COMPARE(fired.count(), 1);
        QVERIFY(!hasSheet(m_fixture->journey().window()));
    }
}

void TestWindowsJourney::showsTheTutorialAgainUnlessDeclined()
{
    m_fixture->start(JourneyFixture::Tutorial::Shown);
    Journey &journey = m_fixture->journey();
    QVERIFY(m_fixture->reachSlices());
    for (int visit = 0; visit < 2; ++visit) {
        QVERIFY(journey.waitForSheet());
        // To the sheet itself: where the window is not active, its focus may be elsewhere.
        QTest::keyClick(sheetPanel(journey.window()), Qt::Key_Return); // OK is the default
        QTRY_VERIFY(!hasSheet(journey.window()));
        QVERIFY(!m_fixture->application().defaults().boolean(VNTHideDemoWindowString));
        QVERIFY(goBackAndForth());
    }
}

void TestWindowsJourney::explainsASliceUntilTheUserClicksElsewhere()
{
    m_fixture->start();
    QVERIFY(m_fixture->reachSlices());
    const QPointer<Popover> popover = openPopover(SliceKind::Trash);
    QVERIFY(popover && popover->isVisible());
    QCOMPARE(popover->findChild<MessageField *>()->text(), QStringLiteral("Empty the Trash"));
    const QRect screen = popover->screen()->availableGeometry();
    QVERIFY(screen.contains(popover->geometry()));
    // Between the pie and the window's corner, where nothing else would get the click.
    QTest::mouseClick(m_fixture->journey().window().windowHandle(), Qt::LeftButton, {}, {40, 600});
    QTRY_VERIFY(!popover);
    QVERIFY(m_fixture->slicesPage().selection().record(SliceKind::Trash).isOn());
}

void TestWindowsJourney::closesThePopoverOnEscape()
{
    m_fixture->start();
    QVERIFY(m_fixture->reachSlices());
    const QPointer<Popover> popover = openPopover(SliceKind::Cache);
    QVERIFY(popover);
    QTest::keyClick(popover->windowHandle(), Qt::Key_Escape);
    QTRY_VERIFY(!popover);
    QVERIFY(m_fixture->journey().window().isVisible());
}

void TestWindowsJourney::showsASliceInTheFileManager()
{
    const SampleHome &home = m_fixture->home();
    FileUrls updates;
    for (const QByteArray &place : home.locationsOf(indexOf(SliceKind::OldIos)))
        updates.append(home.url(place));
    m_fixture->start();
    QVERIFY(m_fixture->reachSlices());
    const auto press = [this](SliceKind kind) {
        ImageButton &button = *m_fixture->slicesPage().hover().buttons().showInFinderButton();
        if (!m_fixture->journey().hoverSlice(kind) ||
            !QTest::qWaitFor([&button] { return button.isVisible(); }))
            return false;
        click(button);
        return true;
    };
    QVERIFY(press(SliceKind::Trash));
    QTRY_COMPARE(m_fixture->workspace().opened.size(), 1);
    const QByteArray trash = home.locationsOf(indexOf(SliceKind::Trash)).constFirst();
    QCOMPARE(m_fixture->workspace().opened.value(0).path(QUrl::FullyDecoded),
             QString::fromUtf8(home.path(trash) + '/'));
    QVERIFY(press(SliceKind::OldIos));
    QTRY_COMPARE(m_fixture->workspace().revealed.size(), 1);
    QCOMPARE(m_fixture->workspace().revealed.value(0), updates);
}

void TestWindowsJourney::isDraggedWithAllThatItHolds()
{
    m_fixture->start();
    QVERIFY(m_fixture->reachSlices());
    const ColorWindow &window = m_fixture->journey().window();
    QWindow *handle = window.windowHandle();
    // By its title, and by the page's background.
    for (const QPoint &place : {QPoint(400, 12), QPoint(60, 500)}) {
        const QPoint before = window.pos();
        QTest::mousePress(handle, Qt::LeftButton, {}, place);
        QTest::mouseMove(handle, place + QPoint(30, 20));
        QTRY_COMPARE(window.pos(), before + QPoint(30, 20));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, place);
    }
    // A slice is not part of the background.
    const QPoint before = window.pos();
    QVERIFY(m_fixture->journey().clickSlice(SliceKind::Downloads));
    QCOMPARE(window.pos(), before);
}

VANTOR_GUI_TEST_MAIN(TestWindowsJourney)
#include "tst_WindowsJourney.moc"
