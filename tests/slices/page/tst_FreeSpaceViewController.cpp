#include "slices/page/FreeSpaceViewController.h"

#include "app/grant/ResourceManager.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "chart/PieChart.h"
#include "chart/PieChartDataSource.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/look/ViewAlpha.h"
#include "platform/sheet/Alert.h"
#include "prefs/popover/Popover.h"
#include "slices/page/SliceHoverButtons.h"
#include "tests/support/calls/SlowDisk.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/RecordingPageDelegate.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/ImageButton.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QSignalSpy>

namespace {

/// An answer that shows something is there as soon as its look is over.
bool comesUp(const QWidget &button)
{
    constexpr int kLongEnough = 300;
    return QTest::qWaitFor([&] { return button.isVisible(); }, kLongEnough);
}

} // namespace

class TestFreeSpaceViewController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void drawsAllSlicesAlike();
    void drawsSlicesThatAreOffInGrey();
    void measuresEverySliceAndAddsUpOnTheButton();
    void showsAHomeWithoutFoldersAsEmpty();
    void measuresAfreshAtEveryVisit();
    void asksToSelectWhenNothingIsOn();
    void togglesAndStoresOnAClick();
    void refusesAnExcludedSliceEachTime();
    void asksForLargeFilesInASheet();
    void followsTheExcludedPaths();
    void tellsOfTheChangeAlsoFromOutsideTheWindow();
    void placesTheHoverButtons();
    void offersToRevealOldUpdatesWhenThereAreAny();
    void offersNothingOfASliceThatThePointerHasLeft();
    void explainsAndRevealsTheHoveredSlice();
    void storesTheSelectionWhenItDisappears();
    void asksForNoCleaningOnItsWayOut();

private:
    void appear();
    QString buttonText() const { return m_page->startButton()->mainText().text(); }
    void hover(SliceKind kind);

    SlowDisk m_disk;
    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<FreeSpaceViewController> m_page;
    RecordingPageDelegate m_delegate;
    ExcludedFilesChangedNotification m_excludedFilesChanged;
};

void TestFreeSpaceViewController::init()
{
    m_fixture = std::make_unique<PageFixture>();
    m_fixture->grantHome();
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_page = std::make_unique<FreeSpaceViewController>(
        m_fixture->loader(),
        FreeSpaceViewController::Services{
            m_fixture->defaults(), m_disk.calls(), ResourceManager::access(),
            m_fixture->workspace(), m_excludedFilesChanged, &ResourceManager::homeFolder,
            [](const auto &then, const auto &) { then(); }, PageFixture::madeVolume()});
    m_page->setDelegate(&m_delegate);
    m_page->view()->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page->view()));
}

void TestFreeSpaceViewController::cleanup()
{
    m_disk.answer();
    m_page.reset(); // stops what it measures
    awaitBackgroundThreads();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

void TestFreeSpaceViewController::appear()
{
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
}

void TestFreeSpaceViewController::hover(SliceKind kind)
{
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), indexOf(kind));
}

void TestFreeSpaceViewController::drawsAllSlicesAlike()
{
    appear();
    PieChart &chart = *m_page->pieChart();
    QCOMPARE(chart.dataSource()->numberOfSlicesInPieChart(chart), 8);
    for (int i = 0; i < 8; ++i)
        QCOMPARE(chart.dataSource()->valueForSliceAtIndex(chart, i), 1.0);
    QCOMPARE(chart.infoRadius(), 155.0);
}

void TestFreeSpaceViewController::drawsSlicesThatAreOffInGrey()
{
    appear();
    PieChart &chart = *m_page->pieChart();
    QCOMPARE(*chart.dataSource()->colorForSliceAtIndex(chart, 0), QColor(93, 183, 26));
    QCOMPARE(*chart.dataSource()->secondaryColorForSliceAtIndex(chart, 0), QColor(103, 166, 56));
    QCOMPARE(*chart.dataSource()->colorForSliceAtIndex(chart, 7), QColor(134, 134, 134));
    QCOMPARE(*chart.dataSource()->secondaryColorForSliceAtIndex(chart, 7), QColor(110, 110, 110));
}

void TestFreeSpaceViewController::measuresEverySliceAndAddsUpOnTheButton()
{
    m_fixture->makeFile(".Trash/a", 1'000'000);
    m_fixture->makeFile("Library/Caches/deep/b", 230'000);
    m_fixture->makeFile("Downloads/off", 9'000'000);
    appear();
    QTRY_COMPARE(buttonText(), QStringLiteral("1.2 MB"));
    QVERIFY(m_page->startButton()->isEnabled());
    QCOMPARE(m_page->startButton()->detailText().text(), QStringLiteral("Click to free"));
    QTRY_COMPARE(m_page->selection().record(SliceKind::Downloads).fileSize(), 9'000'000);
    QCOMPARE(m_page->selection().totalSize(), 1'230'000);
}

void TestFreeSpaceViewController::showsAHomeWithoutFoldersAsEmpty()
{
    appear();
    for (const auto &record : m_page->selection().records())
        QTRY_COMPARE(record->isMeasured(), record->fileURLs().has_value()); // by the labels
    for (const auto &record : m_page->selection().records()) {
        if (record->fileURLs())
            QCOMPARE(record->fileSizeString().value_or(QString()), QStringLiteral("Empty"));
    }
}

void TestFreeSpaceViewController::measuresAfreshAtEveryVisit()
{
    appear();
    QTRY_COMPARE(buttonText(), QStringLiteral("Zero KB"));
    m_page->viewWillDisappear(true);
    m_fixture->makeFile(".Trash/new", 5000);
    appear();
    QTRY_COMPARE(buttonText(), QStringLiteral("5 KB"));
}

void TestFreeSpaceViewController::asksToSelectWhenNothingIsOn()
{
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString, QList<bool>(8, false));
    m_fixture->makeFile(".Trash/a", 999);
    appear();
    m_page->updateButtonText();
    QCOMPARE(buttonText(), QStringLiteral("Select Slices"));
    QVERIFY(m_page->startButton()->detailText().isHidden());
    m_page->didSelectSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::Trash));
    QTRY_COMPARE(buttonText(), QStringLiteral("999 B"));
    QVERIFY(!m_page->startButton()->detailText().isHidden());
}

void TestFreeSpaceViewController::togglesAndStoresOnAClick()
{
    appear();
    QSignalSpy settled(m_page->pieChart(), &PieChart::animationFinished);
    QVERIFY(settled.wait());
    // The middle of the first slice: an eighth of the circle from the top, counter-clockwise.
    const QPoint inFirstSlice = (m_page->pieChart()->center() + QPointF(-70, -169)).toPoint();
    QTest::mouseClick(m_page->pieChart(), Qt::LeftButton, {}, inFirstSlice);
    QVERIFY(!m_page->selection().record(SliceKind::Trash).isOn());
    QCOMPARE(m_fixture->defaults().booleans(VNTSelectedSlicesString).at(0), false);
}

void TestFreeSpaceViewController::refusesAnExcludedSliceEachTime()
{
    const FileUrl trash = m_fixture->homeUrl().appending(".Trash", FileUrlKind::Folder);
    m_fixture->defaults().setStrings(VNTExcludedPathsString,
                                     {QString::fromLatin1(trash.absoluteString())});
    appear();
    for (int click = 0; click < 2; ++click) {
        m_page->didSelectSliceAtIndex(*m_page->pieChart(), 0);
        QVERIFY(!m_page->selection().record(SliceKind::Trash).isOn());
        QVERIFY(
            sheetText(*m_page->view())
                .contains(QStringLiteral("To enable this slice, please remove it's excluded folder "
                                         "from preferences.")));
        QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("OK")));
    }
}

void TestFreeSpaceViewController::asksForLargeFilesInASheet()
{
    appear();
    PieChart &chart = *m_page->pieChart();
    for (int click = 0; click < 2; ++click) // the second does nothing
        m_page->didSelectSliceAtIndex(chart, indexOf(SliceKind::LargeFiles));
    LargeFilesWindowController &sheet = m_page->largeFilesWindowController();
    QCOMPARE(sheetPanel(*m_page->view()->window()), sheet.window());
    QVERIFY(ResourceManager::accessCount() > 0);
    QVERIFY(!m_page->selection().record(SliceKind::LargeFiles).isOn());
    sheet.dismissPanel(sheet.addButton());
    QTRY_VERIFY(!hasSheet(*m_page->view()->window()));
    QTRY_COMPARE(ResourceManager::accessCount(), 0);
    Info &largeFiles = m_page->selection().record(SliceKind::LargeFiles);
    QVERIFY(!largeFiles.isOn());
    QCOMPARE(largeFiles.fileSizeString().value_or(QString()), QStringLiteral("Click to select"));
    QCOMPARE(largeFiles.fileURLs().value_or(FileUrls()), FileUrls());
}

void TestFreeSpaceViewController::followsTheExcludedPaths()
{
    appear();
    const FileUrl trash = m_fixture->homeUrl().appending(".Trash", FileUrlKind::Folder);
    m_fixture->defaults().setStrings(VNTExcludedPathsString,
                                     {QString::fromLatin1(trash.absoluteString())});
    m_excludedFilesChanged.post();
    QVERIFY(!m_page->selection().record(SliceKind::Trash).isOn());
    QVERIFY(!hasSheet(*m_page->view()));
    QCOMPARE(m_fixture->defaults().booleans(VNTSelectedSlicesString).at(0), false);
}

void TestFreeSpaceViewController::tellsOfTheChangeAlsoFromOutsideTheWindow()
{
    appear();
    m_page->selection().record(SliceKind::LargeFiles).setFileURLs({m_fixture->homeUrl()}, 5);
    QStringList told;
    connect(m_page.get(), &FreeSpaceViewController::tells, this,
            [&told](const Alert &alert) { told.append(alert.messageText); });
    m_page->view()->hide();
    m_excludedFilesChanged.post();
    QCOMPARE(told, QStringList{QStringLiteral(
                       "Your preferences have been adjusted, please scan for large files again")});
    QVERIFY(!hasSheet(*m_page->view())); // no one could answer it there
}

void TestFreeSpaceViewController::placesTheHoverButtons()
{
    appear();
    SliceHoverButtons &buttons = m_page->hover().buttons();
    hover(SliceKind::Cache);
    QVERIFY(buttons.infoButton()->isVisible());
    QVERIFY(!buttons.showInFinderButton()->isVisible());
    hover(SliceKind::Trash);
    QVERIFY(buttons.showInFinderButton()->isVisible());
    const QPoint before = buttons.infoButton()->pos();
    buttons.infoButton()->move(0, 0);
    hover(SliceKind::Trash); // the same slice again: nothing moves
    QCOMPARE(buttons.infoButton()->pos(), QPoint(0, 0));
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), -1);
    QVERIFY(!buttons.infoButton()->isVisible());
    QVERIFY(!buttons.showInFinderButton()->isVisible());
    hover(SliceKind::Trash);
    QCOMPARE(buttons.infoButton()->pos(), before);
}

void TestFreeSpaceViewController::offersToRevealOldUpdatesWhenThereAreAny()
{
    appear();
    for (const auto &record : m_page->selection().records())
        QTRY_COMPARE(record->isMeasured(), record->fileURLs().has_value());
    m_disk.takeAskedHere();
    const QWidget &reveal = *m_page->hover().buttons().showInFinderButton();
    m_disk.hang();
    hover(SliceKind::OldIos);
    QVERIFY(m_page->hover().buttons().infoButton()->isVisible());
    QTRY_COMPARE(m_disk.waiting(), 1); // the look has begun
    m_disk.answer();
    QTRY_COMPARE(ResourceManager::accessCount(), 0); // the disk has been looked at
    QVERIFY(!comesUp(reveal));
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), -1);
    m_fixture->makeFolder("Library/iTunes/iPod Software Updates");
    hover(SliceKind::OldIos);
    QTRY_VERIFY(reveal.isVisible());
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

/// The look that comes too late must not put its button onto another slice.
void TestFreeSpaceViewController::offersNothingOfASliceThatThePointerHasLeft()
{
    m_fixture->makeFolder("Library/iTunes/iPod Software Updates");
    appear();
    for (const auto &record : m_page->selection().records())
        QTRY_COMPARE(record->isMeasured(), record->fileURLs().has_value());
    const QWidget &reveal = *m_page->hover().buttons().showInFinderButton();
    m_disk.hang();
    hover(SliceKind::OldIos);
    QTRY_COMPARE(m_disk.waiting(), 1);
    QVERIFY(!reveal.isVisible());
    hover(SliceKind::Cache);
    m_disk.answer();
    QTRY_COMPARE(ResourceManager::accessCount(), 0); // the look is over
    QVERIFY(!comesUp(reveal));
    hover(SliceKind::OldIos);
    QTRY_VERIFY(reveal.isVisible());
}

void TestFreeSpaceViewController::explainsAndRevealsTheHoveredSlice()
{
    m_fixture->makeFolder("Downloads");
    appear();
    m_page->hover().showInfo();
    m_page->hover().showInFinder();
    QVERIFY(m_fixture->workspace().revealed.isEmpty() && m_fixture->workspace().opened.isEmpty());

    hover(SliceKind::Trash);
    m_page->hover().showInFinder();
    QCOMPARE(m_fixture->workspace().opened.value(0).path(QUrl::FullyDecoded),
             QString::fromUtf8(m_fixture->home() + "/.Trash/"));
    hover(SliceKind::Downloads);
    m_disk.takeAskedHere();
    m_page->hover().showInFinder();
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), -1); // on the way to the file manager
    QTRY_COMPARE(m_fixture->workspace().revealed.value(0).value(0).path(),
                 m_fixture->home() + "/Downloads");
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
    hover(SliceKind::Downloads);
    m_page->hover().showInfo();
    QVERIFY(m_page->view()->window()->findChild<Popover *>());
}

void TestFreeSpaceViewController::storesTheSelectionWhenItDisappears()
{
    appear();
    m_page->selection().record(SliceKind::LargeFiles).setIsOn(true);
    m_page->viewWillDisappear(true);
    QVERIFY(!m_page->selection().record(SliceKind::LargeFiles).isOn());
    QCOMPARE(m_fixture->defaults().booleans(VNTSelectedSlicesString),
             QList<bool>({true, false, true, true, true, false, false, false}));
}

void TestFreeSpaceViewController::asksForNoCleaningOnItsWayOut()
{
    appear();
    m_page->viewWillDisappear(true);
    QVERIFY(!m_page->startButton()->isEnabled());
    m_page->next();
    QVERIFY(!hasSheet(*m_page->view()));
}

VANTOR_GUI_TEST_MAIN(TestFreeSpaceViewController)
#include "tst_FreeSpaceViewController.moc"
