#include "prefs/tutorial/DemoWindowController.h"
#include "tests/slices/page/FreeSpaceHomeTest.h"

#include <QSignalSpy>
#include <QTimer>
#include <utility>

/// That just what was confirmed is cleaned, whatever happens before, during and after the question.
class TestFreeSpaceConsent final : public FreeSpaceHomeTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void asksAgainWhenTheChoiceChangedMeanwhile();
    void asksAgainWhenAnExclusionWasTakenBack();
    void keepsWhatWasExcludedWhenItWasConfirmed();
    void namesTheSizeAnewWhenItAsksAgain();
    void asksOnceHoweverOftenTheButtonIsPressed();
    void mayBeAskedAgainWhenTheGrantIsOfNoUse();
    void showsThatItLooksUntilWhatWasConfirmedBegins();
    void showsTheTutorialAfterAQuestionThatWasInItsWay();
    void picksNothingWhileItAsks();
    void picksNothingWhileTheGrantIsLookedAt();
    void asksNothingWhileFilesArePicked();
    void showsThatItLooks();
    void forgetsTheQuestionWhenThePageIsLeft();

private:
    bool confirm() { return pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")); }
    QString detailText() const { return m_page->startButton()->detailText().text(); }
    bool isAsking()
    {
        return hasSheet(*m_page->view()) &&
               sheetText(*m_page->view()).contains(QStringLiteral("You have chosen to delete"));
    }
    void exclude(const QByteArrayList &paths)
    {
        QStringList stored;
        for (const QByteArray &path : paths)
            stored.append(QString::fromLatin1(
                m_fixture->homeUrl().appending(path, FileUrlKind::File).absoluteString()));
        m_fixture->defaults().setStrings(VNTExcludedPathsString, stored);
        m_excludedFilesChanged.post();
    }
    void pickLargeFiles()
    {
        m_page->didSelectSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::LargeFiles));
    }
};

void TestFreeSpaceConsent::asksAgainWhenTheChoiceChangedMeanwhile()
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

void TestFreeSpaceConsent::asksAgainWhenAnExclusionWasTakenBack()
{
    const QByteArray history = ".config/chromium/Default/History";
    exclude({history});
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_page->next();
    QTRY_VERIFY(isAsking());
    exclude({});
    QVERIFY(confirm());
    QTRY_VERIFY(isAsking());
    QCOMPARE(m_delegate.moves.size(), 0);
    QVERIFY(m_fixture->exists(history));
}

/// Taken back while the cleaning waits for a measure.
void TestFreeSpaceConsent::keepsWhatWasExcludedWhenItWasConfirmed()
{
    const QByteArray history = ".config/chromium/Default/History";
    exclude({history});
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString,
                                      {true, false, false, false, false, false, false, true});
    appear();
    m_page->next();
    QTRY_VERIFY(isAsking());
    Info &trash = m_page->selection().record(SliceKind::Trash);
    QTRY_VERIFY(trash.isMeasured());
    trash.setFileSizeString(std::nullopt);
    m_listings.close();
    QVERIFY(confirm());
    QTRY_VERIFY(m_page->isCleaning());
    exclude({});
    m_listings.open();
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QVERIFY(m_fixture->exists(history));
    QVERIFY(!m_fixture->exists(".local/share/Trash/files/b"));
}

void TestFreeSpaceConsent::namesTheSizeAnewWhenItAsksAgain()
{
    m_fixture->makeFile(".cache/mozilla/firefox/x.default/c", 700'000);
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString,
                                      {false, false, true, false, false, false, false, false});
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 2'700'000);
    m_page->next();
    QTRY_VERIFY(isAsking());
    firefoxStarts();
    description(SliceKind::Cache); // notices it
    QVERIFY(confirm());
    QTRY_VERIFY(
        isAsking() &&
        sheetText(*m_page->view()).contains(QStringLiteral("(2 MB without the files of Firefox")));
}

void TestFreeSpaceConsent::asksOnceHoweverOftenTheButtonIsPressed()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_holdsGrant = true;
    m_page->next();
    const std::function<void()> first = std::exchange(m_held, nullptr);
    m_page->next();
    QVERIFY(!m_held);
    first();
    QTRY_VERIFY(isAsking());
    m_page->next();
    QVERIFY(!m_held);
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Cancel")));
    QTRY_VERIFY(!hasSheet(*m_page->view()));
    m_page->next(); // and may be asked anew
    QVERIFY(m_held);
}

void TestFreeSpaceConsent::mayBeAskedAgainWhenTheGrantIsOfNoUse()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_holdsGrant = true;
    m_page->next();
    QCOMPARE(detailText(), QStringLiteral("Looking…"));
    m_refused();
    QCOMPARE(detailText(), QStringLiteral("Click to free"));
    m_holdsGrant = false;
    m_page->next();
    QTRY_VERIFY(isAsking());
}

/// The folder's disk takes its time to answer.
void TestFreeSpaceConsent::showsThatItLooksUntilWhatWasConfirmedBegins()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_page->next();
    QTRY_VERIFY(isAsking());
    m_holdsGrant = true;
    QVERIFY(confirm());
    QTRY_VERIFY(m_held);
    QCOMPARE(detailText(), QStringLiteral("Looking…"));
    const std::function<void()> goOn = std::exchange(m_held, nullptr);
    m_page->next();
    QVERIFY(!m_held && !hasSheet(*m_page->view()));
    goOn();
    QTRY_COMPARE(m_delegate.moves.size(), 1);
}

void TestFreeSpaceConsent::showsTheTutorialAfterAQuestionThatWasInItsWay()
{
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, false);
    appear();
    m_page->next();
    QTRY_VERIFY(isAsking());
    QTimer later; // started after the page's own, it fires after it
    later.setSingleShot(true);
    QSignalSpy fired(&later, &QTimer::timeout);
    later.start(std::chrono::milliseconds(1100));
    QVERIFY(fired.wait());
    QVERIFY(isAsking());
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Cancel")));
    QTRY_VERIFY(hasSheet(*m_page->view()) &&
                sheetPanel(*m_page->view()) == m_page->demoWindowController().window());
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("OK")));
}

void TestFreeSpaceConsent::picksNothingWhileItAsks()
{
    m_fixture->makeFile("Videos/film.mov", 300'000'000);
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_holdsGrant = true;
    pickLargeFiles();
    m_holdsGrant = false;
    m_page->next();
    QTRY_VERIFY(isAsking());
    m_held(); // the answer to the click comes after the question
    pickLargeFiles();
    QVERIFY(confirm());
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QVERIFY(!hasSheet(*m_page->view()));
    QVERIFY(m_fixture->exists("Videos/film.mov"));
}

void TestFreeSpaceConsent::picksNothingWhileTheGrantIsLookedAt()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_holdsGrant = true;
    m_page->next();
    const std::function<void()> goOn = std::exchange(m_held, nullptr);
    pickLargeFiles();
    QVERIFY(!m_held);
    goOn();
    QTRY_VERIFY(isAsking());
}

void TestFreeSpaceConsent::asksNothingWhileFilesArePicked()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    pickLargeFiles();
    QTRY_VERIFY(hasSheet(*m_page->view()));
    m_page->next();
    m_page->largeFilesWindowController().cancel();
    QTRY_VERIFY(!hasSheet(*m_page->view()));
    m_page->next();
    QTRY_VERIFY(isAsking());
}

void TestFreeSpaceConsent::showsThatItLooks()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_page->next();
    QCOMPARE(detailText(), QStringLiteral("Looking…"));
    QTRY_VERIFY(isAsking());
    QCOMPARE(detailText(), QStringLiteral("Click to free"));
}

void TestFreeSpaceConsent::forgetsTheQuestionWhenThePageIsLeft()
{
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    m_page->next();
    m_page->viewWillDisappear(false);
    appear();
    QTRY_COMPARE(m_page->selection().totalSize(), 4'500'000);
    QVERIFY(!hasSheet(*m_page->view()));
    m_page->next();
    QTRY_VERIFY(isAsking());
}

VANTOR_GUI_TEST_MAIN(TestFreeSpaceConsent)
#include "tst_FreeSpaceConsent.moc"
