#include "tests/slices/page/FreeSpaceHomeTest.h"

/// The page of the slices in a freedesktop home, whose locations have to be found first.
class TestFreeSpaceHome final : public FreeSpaceHomeTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

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
};

void TestFreeSpaceHome::findsThePlacesBesideTheMainThread()
{
    m_listings.close();
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
    for (const auto &record : m_page->selection().records())
        QVERIFY(!record->fileURLs());
    QVERIFY(!m_page->startButton()->isEnabled());
    m_page->next();
    m_page->hover().showInFinder();
    QVERIFY(!hasSheet(*m_page->view()));
    m_listings.open();
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
    m_listings.close();
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
    const FileUrl cache = m_fixture->homeUrl().appending(".cache", FileUrlKind::Folder);
    m_fixture->defaults().setStrings(VNTExcludedPathsString,
                                     {QString::fromLatin1(cache.absoluteString())});
    m_excludedFilesChanged.post();
    m_listings.open();
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
    QVERIFY(m_page->hover().buttons().showInFinderButton()->isVisible());
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
    m_page->hover().showInFinder();
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
    m_page->hover().showInFinder();
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

VANTOR_GUI_TEST_MAIN(TestFreeSpaceHome)
#include "tst_FreeSpaceHome.moc"
