#include "app/grant/ResourceManager.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "chart/PieChart.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/system/HostSystemCalls.h"
#include "slices/page/FreeSpaceViewController.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/RecordingPageDelegate.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"

namespace {

constexpr qint64 kFilm = 300'000'000;
constexpr qint64 kConcert = 200'000'000;

} // namespace

/// What the page makes of the files that are picked in the sheet.
class TestFreeSpaceLargeFiles final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void takesFilesAndSizeInOneStep();
    void turnsOffWhenNothingIsAdded();
    void keepsThePicksForTheNextOpening();
    void followsASizeThatIsReadLate();
    void opensOneSheetHoweverOftenItIsAsked();
    void staysShutWithoutAUsableGrant();
    void staysShutOnItsWayOut();
    void searchesAnewWhenTheExclusionsChangeUnderTheSheet();
    void mayBeLeftWhileItSearches();
    void mayDieUnderItsSheet();

private:
    void click()
    {
        m_page->didSelectSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::LargeFiles));
    }
    void openSheet();
    void end(QAbstractButton *button);
    LargeFilesWindowController &sheet() { return m_page->largeFilesWindowController(); }
    bool hasSheetUp() const { return hasSheet(*m_page->view()->window()); }
    Info &slice() { return m_page->selection().record(SliceKind::LargeFiles); }
    QString sliceText() { return slice().fileSizeString().value_or(QString()); }
    FileUrl url(const QByteArray &path) const
    {
        return m_fixture->homeUrl().appending(path, FileUrlKind::File);
    }

    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<FreeSpaceViewController> m_page;
    RecordingPageDelegate m_delegate;
    ExcludedFilesChangedNotification m_excludedFilesChanged;
    bool m_grantIsUsable = true;
};

void TestFreeSpaceLargeFiles::init()
{
    m_grantIsUsable = true;
    m_fixture = std::make_unique<PageFixture>();
    m_fixture->grantHome();
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_fixture->makeFile("Movies/film.mov", kFilm);
    m_fixture->makeFile("Music/concert.flac", kConcert);
    m_page = std::make_unique<FreeSpaceViewController>(
        m_fixture->loader(),
        FreeSpaceViewController::Services{m_fixture->defaults(), hostSystemCalls(),
                                          ResourceManager::access(), m_fixture->workspace(),
                                          m_excludedFilesChanged, &ResourceManager::homeFolder,
                                          [this](const auto &then, const auto &) {
                                              if (m_grantIsUsable)
                                                  then();
                                          },
                                          PageFixture::madeVolume()});
    m_page->setDelegate(&m_delegate);
    m_page->view()->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page->view()));
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
}

void TestFreeSpaceLargeFiles::cleanup()
{
    m_page.reset();
    awaitBackgroundThreads();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

void TestFreeSpaceLargeFiles::openSheet()
{
    click();
    QVERIFY(hasSheetUp());
    QTRY_VERIFY(!sheet().search().isRunning());
}

void TestFreeSpaceLargeFiles::end(QAbstractButton *button)
{
    sheet().dismissPanel(button);
    QTRY_VERIFY(!hasSheetUp());
    QTRY_COMPARE(ResourceManager::accessCount(), 0);
}

void TestFreeSpaceLargeFiles::takesFilesAndSizeInOneStep()
{
    openSheet();
    sheet().addButtonPressed(0);
    sheet().addButtonPressed(1);
    QVERIFY(!slice().isOn());
    end(sheet().addButton());
    QVERIFY(slice().isOn());
    QCOMPARE(slice().fileURLs().value_or(FileUrls()),
             FileUrls({url("Movies/film.mov"), url("Music/concert.flac")}));
    QCOMPARE(slice().fileSize(), kFilm + kConcert);
    QCOMPARE(sliceText(), QStringLiteral("500 MB"));
    QVERIFY(!m_fixture->defaults().booleans(VNTSelectedSlicesString).at(1));
}

void TestFreeSpaceLargeFiles::turnsOffWhenNothingIsAdded()
{
    for (const bool isOnAfter : {true, false}) {
        openSheet();
        sheet().addButtonPressed(0); // the second time it drops the file
        end(sheet().addButton());
        QCOMPARE(slice().isOn(), isOnAfter);
    }
    QCOMPARE(sliceText(), QStringLiteral("Click to select"));
    QCOMPARE(slice().fileURLs().value_or(FileUrls()), FileUrls());
    QCOMPARE(slice().fileSize(), 0);
}

void TestFreeSpaceLargeFiles::keepsThePicksForTheNextOpening()
{
    openSheet();
    sheet().addButtonPressed(1);
    end(sheet().addButton());
    openSheet();
    QCOMPARE(sheet().array().rowCount(), 2);
    QCOMPARE(sheet().selectedURLs(), FileUrls{url("Music/concert.flac")});
    end(sheet().cancelButton());
    QVERIFY(!slice().isOn());
    QCOMPARE(sliceText(), QStringLiteral("Click to select"));
}

void TestFreeSpaceLargeFiles::followsASizeThatIsReadLate()
{
    openSheet();
    sheet().addButtonPressed(1);
    end(sheet().addButton());
    QVERIFY(QFile::resize(QFile::decodeName(url("Music/concert.flac").path()), kConcert / 2));
    sheet().array().refreshSizes();
    QTRY_COMPARE(slice().fileSize(), kConcert / 2);
    QCOMPARE(sliceText(), QStringLiteral("100 MB"));
    QVERIFY(QFile::remove(QFile::decodeName(url("Music/concert.flac").path())));
    sheet().array().refreshSizes();
    QTRY_COMPARE(slice().fileSize(), 0);
    QVERIFY(slice().isOn());
}

void TestFreeSpaceLargeFiles::opensOneSheetHoweverOftenItIsAsked()
{
    click();
    click();
    end(sheet().cancelButton());
    QVERIFY(!hasSheetUp());
}

void TestFreeSpaceLargeFiles::staysShutWithoutAUsableGrant()
{
    m_grantIsUsable = false;
    click();
    QVERIFY(!hasSheetUp());
}

void TestFreeSpaceLargeFiles::staysShutOnItsWayOut()
{
    m_page->viewWillDisappear(true);
    click();
    QVERIFY(!hasSheetUp());
}

void TestFreeSpaceLargeFiles::searchesAnewWhenTheExclusionsChangeUnderTheSheet()
{
    openSheet();
    sheet().addButtonPressed(0);
    const QString excluded = QString::fromLatin1(url("Music/concert.flac").absoluteString());
    m_fixture->defaults().setStrings(VNTExcludedPathsString, {excluded});
    m_excludedFilesChanged.post();
    QTRY_VERIFY(!sheet().search().isRunning());
    QCOMPARE(sheet().array().fileURLs(), FileUrls{url("Movies/film.mov")});
    QVERIFY(sheet().selectedURLs().isEmpty());
    end(sheet().addButton());
    QVERIFY(!slice().isOn());
    QVERIFY(!hasSheetUp());
}

void TestFreeSpaceLargeFiles::mayBeLeftWhileItSearches()
{
    click();
    QVERIFY(sheet().search().isRunning());
    QTest::keyClick(sheet().tableView(), Qt::Key_Escape);
    QVERIFY(!sheet().search().isRunning());
    QTRY_VERIFY(!hasSheetUp());
    QTRY_COMPARE(ResourceManager::accessCount(), 0);
    openSheet();
    QCOMPARE(sheet().array().rowCount(), 2);
}

void TestFreeSpaceLargeFiles::mayDieUnderItsSheet()
{
    openSheet();
    sheet().addButtonPressed(0);
    m_page.reset();
    QCOMPARE(ResourceManager::accessCount(), 0);
}

VANTOR_GUI_TEST_MAIN(TestFreeSpaceLargeFiles)
#include "tst_FreeSpaceLargeFiles.moc"
