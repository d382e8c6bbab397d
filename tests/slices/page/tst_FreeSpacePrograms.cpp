#include "tests/slices/page/FreeSpaceHomeTest.h"

/// What the page of the slices does about programs that run.
class TestFreeSpacePrograms final : public FreeSpaceHomeTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void leavesOutWhatARunningBrowserUses();
    void leavesOutTheCacheOfARunningBrowser();
    void describesTheProgramsThatRunAtThatMoment();
    void explainsNothingOfASliceThatThePointerHasLeft();
    void asksNothingOnceAllIsSwitchedOff();
    void doesNotWaitForSlicesThatAreOff();
    void looksForProgramsAgainBeforeItAsks();
    void givesBackWhatAnEndedProgramUsed();
    void keepsTheFilesOfAProgramStartedAfterTheConsent();

private:
    Info &browserData() { return m_page->selection().record(SliceKind::BrowserData); }
};

void TestFreeSpacePrograms::leavesOutWhatARunningBrowserUses()
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

void TestFreeSpacePrograms::leavesOutTheCacheOfARunningBrowser()
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

void TestFreeSpacePrograms::describesTheProgramsThatRunAtThatMoment()
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

void TestFreeSpacePrograms::explainsNothingOfASliceThatThePointerHasLeft()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    QTRY_COMPARE(ResourceManager::accessCount(), 0);
    m_folders.close();
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::BrowserData));
    m_page->hover().showInfo();
    QTRY_COMPARE(ResourceManager::accessCount(), 1); // programs are looked for
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::Cache));
    m_folders.open();
    QTRY_COMPARE(ResourceManager::accessCount(), 0);
    QCoreApplication::processEvents(); // the answer
    QVERIFY(!m_page->view()->window()->findChild<Popover *>());
}

void TestFreeSpacePrograms::asksNothingOnceAllIsSwitchedOff()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_folders.close();
    m_page->next();
    m_page->didSelectSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::BrowserData));
    QVERIFY(!m_page->selection().somethingIsSelected());
    m_folders.open();
    QTRY_COMPARE(m_page->startButton()->detailText().text(), QStringLiteral("Click to free"));
    QVERIFY(!hasSheet(*m_page->view()));
}

/// The cache is off, and its measure hangs.
void TestFreeSpacePrograms::doesNotWaitForSlicesThatAreOff()
{
    m_fixture->makeFile(".cache/mozilla/c", 1);
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    QTRY_VERIFY(m_page->selection().record(SliceKind::Cache).isMeasured());
    firefoxStarts();
    m_sizes.close();
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
}

void TestFreeSpacePrograms::looksForProgramsAgainBeforeItAsks()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    firefoxStarts();
    m_page->next();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    QVERIFY(sheetText(*m_page->view()).contains(QStringLiteral("(4 MB without")));
    QCOMPARE(m_page->selection().totalSize(), 4'000'000);
}

void TestFreeSpacePrograms::givesBackWhatAnEndedProgramUsed()
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

void TestFreeSpacePrograms::keepsTheFilesOfAProgramStartedAfterTheConsent()
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
    QVERIFY(leftAlone.contains(QStringLiteral("cookies.sqlite: a program is using it")));
}

VANTOR_GUI_TEST_MAIN(TestFreeSpacePrograms)
#include "tst_FreeSpacePrograms.moc"
