#include "app/ExcludedFilesChangedNotification.h"
#include "app/ResourceManager.h"
#include "app/SettingsKeys.h"
#include "chart/PieChart.h"
#include "largefiles/LargeFilesWindowController.h"
#include "platform/Alert.h"
#include "prefs/Popover.h"
#include "slices/FreeSpaceViewController.h"
#include "slices/SliceHoverButtons.h"
#include "tests/support/GuiTestMain.h"
#include "tests/support/PageFixture.h"
#include "tests/support/RecordingPageDelegate.h"
#include "tests/support/SheetDriver.h"
#include "tests/support/WatchedSystemCalls.h"
#include "widgets/ImageButton.h"
#include "widgets/StartButton.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QScopeGuard>
#include <QSemaphore>
#include <QThreadPool>
#include <atomic>
#include <cerrno>
#include <unistd.h>

/// The page of the slices in a freedesktop home, whose places have to be found first.
class TestFreeSpaceHome final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void findsThePlacesBesideTheMainThread();
    void findsThemAfreshAtEveryVisit();
    void hasNoPlacesWhileTheHomeDoesNotAnswer();
    void switchesOffWhatWasExcludedMeanwhile();
    void asksTheDiskForNothingUnderThePointer();
    void namesTheFolderOfDownloads();
    void describesTheProgramsOfThisKindOfHome();
    void opensTheTrash();
    void saysThatTheTrashIsEmptyWhereThereIsNone();
    void searchesLargeFilesWhereTheHomeNamesThem();
    void leadsOnByTheKeyboardOnceTheHomeIsFound();
    void leavesOutWhatARunningBrowserUses();
    void leavesOutTheCacheOfARunningBrowser();
    void describesTheProgramsThatRunAtThatMoment();
    void doesNotWaitForSlicesThatAreOff();
    void asksAgainWhenTheChoiceChangedMeanwhile();
    void looksForProgramsAgainBeforeItAsks();
    void givesBackWhatAnEndedProgramUsed();
    void keepsTheFilesOfAProgramStartedAfterTheConsent();

private:
    void appear();
    void firefoxStarts();
    void firefoxEnds();
    QString description(SliceKind kind);
    Info &browserData() { return m_page->selection().record(SliceKind::BrowserData); }

    std::unique_ptr<PageFixture> m_fixture;
    std::function<void()> m_beforeListing; ///< on the thread that lists
    std::atomic<int> m_count = 0;          ///< of the calls for folders and entries
    bool m_isSilent = false;               ///< whether nobody can tell what kind of home it is
    WatchedSystemCalls m_calls{[this](int, WatchedCall call, const char *name) {
        ++m_count;
        if (m_isSilent && qstrcmp(name, "Library") == 0)
            return EIO;
        if (call == WatchedCall::ReadEntries && m_beforeListing)
            m_beforeListing();
        return 0;
    }};
    std::unique_ptr<FreeSpaceViewController> m_page;
    RecordingPageDelegate m_delegate;
    ExcludedFilesChangedNotification m_excludedFilesChanged;
};

void TestFreeSpaceHome::init()
{
    m_delegate.moves.clear();
    m_beforeListing = {};
    m_isSilent = false;
    m_fixture = std::make_unique<PageFixture>(HomeKind::Freedesktop);
    m_fixture->grantHome();
    m_fixture->makeFile(".cache/a", 2'000'000);
    m_fixture->makeFile(".local/share/Trash/files/b", 300'000);
    m_fixture->makeFile(".config/chromium/Default/History", 4'000'000);
    m_fixture->makeFile(".mozilla/firefox/x.default/cookies.sqlite", 500'000);
    m_fixture->makeFile(".mozilla/firefox/x.default/.parentlock", 0);
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString,
                                      {false, false, false, false, false, false, false, true});
    m_page = std::make_unique<FreeSpaceViewController>(
        m_fixture->loader(),
        FreeSpaceViewController::Services{
            m_fixture->defaults(), m_calls, ResourceManager::access(), m_fixture->workspace(),
            m_excludedFilesChanged, &ResourceManager::homeFolder, [](const auto &then) { then(); },
            PageFixture::madeVolume()});
    m_page->setDelegate(&m_delegate);
    m_page->view()->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page->view()));
}

void TestFreeSpaceHome::cleanup()
{
    m_page.reset();
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

void TestFreeSpaceHome::appear()
{
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
    QTRY_VERIFY(m_page->startButton()->isEnabled());
}

/// As far as its traces tell, Firefox is this very process.
void TestFreeSpaceHome::firefoxStarts()
{
    m_fixture->folder().makeLink("anna/.mozilla/firefox/x.default/lock",
                                 "127.0.1.1:+" + QByteArray::number(::getpid()));
}

void TestFreeSpaceHome::firefoxEnds()
{
    QVERIFY(
        QFile::remove(QFile::decodeName(m_fixture->home() + "/.mozilla/firefox/x.default/lock")));
}

QString TestFreeSpaceHome::description(SliceKind kind)
{
    const auto popover = [this] { return m_page->view()->window()->findChild<Popover *>(); };
    while (popover())
        delete popover(); // of an earlier description
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), indexOf(kind));
    m_page->showInfo();
    QString text;
    if (QTest::qWaitFor([&] { return popover() != nullptr; })) {
        for (const QLabel *label : popover()->findChildren<QLabel *>())
            text += label->text();
    }
    return text;
}

void TestFreeSpaceHome::findsThePlacesBesideTheMainThread()
{
    QSemaphore gate;
    m_beforeListing = [&gate] { gate.acquire(); };
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
    for (const auto &record : m_page->selection().records())
        QVERIFY(!record->fileURLs());
    QVERIFY(!m_page->startButton()->isEnabled());
    m_page->next();
    m_page->showInFinder();
    QVERIFY(!hasSheet(*m_page->view()));
    gate.release(1'000);
    QTRY_VERIFY(m_page->startButton()->isEnabled());
    QCOMPARE(m_page->homeLayout().kind(), HomeKind::Freedesktop);
    QTRY_COMPARE(m_page->selection().record(SliceKind::Cache).fileSize(), 2'000'000);
    QTRY_COMPARE(m_page->selection().record(SliceKind::Trash).fileSize(), 300'000);
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    QTRY_COMPARE(m_page->selection().record(SliceKind::OldIos).fileSizeString().value_or(QString()),
                 QStringLiteral("Empty"));
}

void TestFreeSpaceHome::findsThemAfreshAtEveryVisit()
{
    appear();
    QTRY_COMPARE(m_page->selection().record(SliceKind::Cache).fileSize(), 2'000'000);
    m_page->viewWillDisappear(true);
    m_fixture->makeFile(".var/app/org.a.A/cache/c", 1'000'000);
    appear();
    QTRY_COMPARE(m_page->selection().record(SliceKind::Cache).fileSize(), 3'000'000);
    m_page->viewWillDisappear(true);
    m_fixture->makeFile("Library/Caches/d", 700);
    m_page->viewWillAppear(true);
    QCOMPARE(m_page->homeLayout().kind(), HomeKind::Library); // at once
    m_page->viewDidAppear(true);
    QTRY_COMPARE(m_page->selection().record(SliceKind::Cache).fileSize(), 700);
}

void TestFreeSpaceHome::hasNoPlacesWhileTheHomeDoesNotAnswer()
{
    m_isSilent = true;
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
    QCOMPARE(m_page->homeLayout().kind(), HomeKind::Unknown);
    QVERIFY(!m_page->startButton()->isEnabled());
    m_page->viewWillDisappear(true);
    m_isSilent = false;
    appear();
    QCOMPARE(m_page->homeLayout().kind(), HomeKind::Freedesktop);
}

void TestFreeSpaceHome::switchesOffWhatWasExcludedMeanwhile()
{
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString,
                                      {true, false, true, false, false, false, false, false});
    QSemaphore gate;
    m_beforeListing = [&gate] { gate.acquire(); };
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
    const FileUrl cache = m_fixture->homeUrl().appending(".cache", FileUrlKind::Folder);
    m_fixture->defaults().setStrings(VNTExcludedPathsString,
                                     {QString::fromLatin1(cache.absoluteString())});
    m_excludedFilesChanged.post();
    gate.release(1'000);
    QTRY_VERIFY(m_page->startButton()->isEnabled());
    QVERIFY(!m_page->selection().record(SliceKind::Cache).isOn());
    QVERIFY(m_page->selection().record(SliceKind::Trash).isOn());
}

void TestFreeSpaceHome::asksTheDiskForNothingUnderThePointer()
{
    m_fixture->makeFile(".wine/drive_c/users/anna/AppData/Roaming/Apple Computer/iTunes/"
                        "iPad Software Updates/a",
                        7);
    appear();
    QTRY_COMPARE(m_page->selection().record(SliceKind::OldIos).fileSize(), 7);
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    QTRY_COMPARE(m_page->selection().record(SliceKind::Cache).fileSize(), 2'000'000);
    QTRY_COMPARE(m_page->selection().record(SliceKind::Trash).fileSize(), 300'000);
    const int before = m_count;
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::OldIos));
    QCOMPARE(int(m_count), before);
    QVERIFY(m_page->hoverButtons()->showInFinderButton()->isVisible());
}

void TestFreeSpaceHome::namesTheFolderOfDownloads()
{
    m_fixture->makeFile("Get/a", 7);
    m_fixture->makeFile(".config/user-dirs.dirs", 0);
    QFile file(QFile::decodeName(m_fixture->home() + "/.config/user-dirs.dirs"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("XDG_DOWNLOAD_DIR=\"$HOME/Get\"\n");
    file.close();
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString,
                                      {false, false, false, false, false, true, false, false});
    appear();
    QVERIFY(description(SliceKind::Downloads).contains(QStringLiteral("“Get”")));
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    QVERIFY(
        sheetText(*m_page->view()).contains(QStringLiteral("• Downloads (the folder “Get”)\n")));
}

void TestFreeSpaceHome::describesTheProgramsOfThisKindOfHome()
{
    appear();
    QVERIFY(description(SliceKind::OldIos).contains(QStringLiteral("Wine")));
    QVERIFY(description(SliceKind::BrowserData).contains(QStringLiteral("Firefox")));
    QVERIFY(!description(SliceKind::BrowserData).contains(QStringLiteral("in use")));
    QVERIFY(description(SliceKind::Trash).contains(QStringLiteral("Empty the Trash")));
}

void TestFreeSpaceHome::opensTheTrash()
{
    appear();
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::Trash));
    m_page->showInFinder();
    QTRY_COMPARE(m_fixture->workspace().opened.size(), 1);
    QVERIFY(m_fixture->workspace().opened[0].path().endsWith(
        QStringLiteral("/.local/share/Trash/files/")));
}

/// The folder comes with the first file that is thrown away.
void TestFreeSpaceHome::saysThatTheTrashIsEmptyWhereThereIsNone()
{
    const QString trash = QFile::decodeName(m_fixture->home() + "/.local/share/Trash");
    QVERIFY(QDir(trash).removeRecursively());
    appear();
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::Trash));
    m_page->showInFinder();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    QVERIFY(sheetText(*m_page->view()).contains(QStringLiteral("The Trash is empty.")));
    QVERIFY(m_fixture->workspace().opened.isEmpty());
}

void TestFreeSpaceHome::searchesLargeFilesWhereTheHomeNamesThem()
{
    m_fixture->makeFile("Videos/film.mkv", 300'000'000);
    m_fixture->makeFile("Movies/film.mkv", 300'000'000); // the other kind's name
    appear();
    m_page->didSelectSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::LargeFiles));
    LargeFilesWindowController &sheet = m_page->largeFilesWindowController();
    QTRY_VERIFY(!sheet.search().isRunning());
    QTRY_COMPARE(sheet.array().rowCount(), 1);
    QVERIFY(sheet.array().fileAt(0).fileURL().path().endsWith("/Videos/film.mkv"));
    sheet.cancel();
    QTRY_VERIFY(!hasSheet(*m_page->view()));
}

void TestFreeSpaceHome::leadsOnByTheKeyboardOnceTheHomeIsFound()
{
    appear();
    QCOMPARE(m_page->view()->window()->focusWidget(), m_page->startButton());
    m_page->pieChart()->setFocus(); // the user's choice stands
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
    QTRY_VERIFY(m_page->startButton()->isEnabled());
    QCOMPARE(m_page->view()->window()->focusWidget(), m_page->pieChart());
}

void TestFreeSpaceHome::leavesOutWhatARunningBrowserUses()
{
    firefoxStarts();
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'000'000);
    QCOMPARE(browserData().fileURLs()->size(), 1);
    QVERIFY(description(SliceKind::BrowserData)
                .contains(QStringLiteral("Firefox is in use: its files stay.")));
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    QVERIFY(sheetText(*m_page->view())
                .contains(QStringLiteral("• Browser Data (4 MB without the files of Firefox, which "
                                         "is in use)\n")));
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QCOMPARE(m_delegate.moves[0].data, QVariant(qint64{4'000'000}));
    QVERIFY(m_fixture->exists(".mozilla/firefox/x.default/cookies.sqlite"));
    QVERIFY(!m_fixture->exists(".config/chromium/Default/History"));
}

void TestFreeSpaceHome::leavesOutTheCacheOfARunningBrowser()
{
    m_fixture->makeFile(".cache/mozilla/firefox/x.default/c", 700'000);
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString,
                                      {false, false, true, false, false, false, false, false});
    firefoxStarts();
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 2'000'000);
    QVERIFY(description(SliceKind::Cache)
                .contains(QStringLiteral("Firefox is in use: its files stay.")));
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    QVERIFY(sheetText(*m_page->view())
                .contains(QStringLiteral("• Cache (2 MB without the files of Firefox, which is "
                                         "in use)\n")));
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QCOMPARE(m_delegate.moves[0].data, QVariant(qint64{2'000'000}));
    QVERIFY(m_fixture->exists(".cache/mozilla/firefox/x.default/c"));
    QVERIFY(!m_fixture->exists(".cache/a"));
}

void TestFreeSpaceHome::describesTheProgramsThatRunAtThatMoment()
{
    appear();
    QVERIFY(!description(SliceKind::BrowserData).contains(QStringLiteral("in use")));
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), SliceHoverButtons::kNoSlice);
    firefoxStarts();
    QVERIFY(description(SliceKind::BrowserData).contains(QStringLiteral("Firefox is in use")));
    QTRY_COMPARE(m_page->selection().totalSize(), 4'000'000); // as it is described
    firefoxEnds();
    QVERIFY(!description(SliceKind::BrowserData).contains(QStringLiteral("in use")));
}

/// The cache is off, and its measure hangs.
void TestFreeSpaceHome::doesNotWaitForSlicesThatAreOff()
{
    m_fixture->makeFile(".cache/mozilla/c", 1);
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    QTRY_VERIFY(m_page->selection().record(SliceKind::Cache).isMeasured());
    firefoxStarts();
    QSemaphore gate;
    const auto open = qScopeGuard([&] { gate.release(100); });
    m_beforeListing = [&gate] { gate.acquire(); };
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
}

void TestFreeSpaceHome::asksAgainWhenTheChoiceChangedMeanwhile()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    QVERIFY(!sheetText(*m_page->view()).contains(QStringLiteral("Trash")));
    m_page->didSelectSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::Trash));
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QTRY_VERIFY(hasSheet(*m_page->view()) &&
                sheetText(*m_page->view()).contains(QStringLiteral("• Trash\n")));
    QVERIFY(m_fixture->exists(".local/share/Trash/files/b"));
    QVERIFY(m_fixture->exists(".config/chromium/Default/History"));
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QVERIFY(!m_fixture->exists(".local/share/Trash/files/b"));
}

void TestFreeSpaceHome::looksForProgramsAgainBeforeItAsks()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    firefoxStarts();
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    QVERIFY(sheetText(*m_page->view()).contains(QStringLiteral("(4 MB without")));
    QCOMPARE(m_page->selection().totalSize(), 4'000'000);
}

void TestFreeSpaceHome::givesBackWhatAnEndedProgramUsed()
{
    firefoxStarts();
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'000'000);
    firefoxEnds();
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    QVERIFY(sheetText(*m_page->view()).contains(QStringLiteral("• Browser Data\n")));
    QCOMPARE(m_page->selection().totalSize(), 4'500'000);
}

void TestFreeSpaceHome::keepsTheFilesOfAProgramStartedAfterTheConsent()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    QString leftAlone;
    connect(m_page.get(), &FreeSpaceViewController::tells, this,
            [&](const Alert &alert) { leftAlone = alert.informativeText; });
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    firefoxStarts();
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QCOMPARE(m_delegate.moves[0].data, QVariant(qint64{4'000'000}));
    QVERIFY(m_fixture->exists(".mozilla/firefox/x.default/cookies.sqlite"));
    QVERIFY(!m_fixture->exists(".config/chromium/Default/History"));
    QVERIFY(leftAlone.contains(QStringLiteral("cookies.sqlite: a program has begun to use it")));
}

VANTOR_GUI_TEST_MAIN(TestFreeSpaceHome)
#include "tst_FreeSpaceHome.moc"
