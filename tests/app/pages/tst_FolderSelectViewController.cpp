#include "app/pages/FolderSelectViewController.h"
#include "platform/system/HostSystemCalls.h"

#include "app/settings/SettingsKeys.h"
#include "platform/files/FolderGrant.h"
#include "platform/sheet/Sheet.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/calls/SlowDisk.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/RecordingPageDelegate.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/SeenAfter.h"
#include "widgets/ImageButton.h"
#include "widgets/ImageView.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <cerrno>

class TestFolderSelectViewController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void startsUngranted();
    void storesTheHomeAndMovesOn();
    void acceptsOnlyFoldersNamedLikeTheHome_data();
    void acceptsOnlyFoldersNamedLikeTheHome();
    void storesNothingWhenCancelled();
    void movesOnAfterASecond();
    void movesOnAgainWhenShownAgain();
    void staysWhenTheGrantIsTakenBackMeanwhile();
    void staysBeneathThePanel();
    void waitsForTheFolderBesideTheMainThread();
    void storesNothingOfAPageThatWasLeft_data();
    void storesNothingOfAPageThatWasLeft();
    void tellsWhenTheFolderCannotBeGranted();
    void ignoresAnApplicationsFolder();
    void startsThePanelAtTheFolderOfTheKey();

private:
    void choose(const QByteArray &path);
    bool hasGrant() const { return m_fixture->defaults().isStored(VNTHomeFolderString); }

    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<FolderSelectViewController> m_page;
    SlowDisk m_disk;
    HookedSystem m_calls{{}, m_disk.calls()};
    RecordingPageDelegate m_delegate;
};

void TestFolderSelectViewController::init()
{
    m_calls.setHook({});
    m_delegate.moves.clear();
    m_fixture = std::make_unique<PageFixture>();
    m_page = std::make_unique<FolderSelectViewController>(
        m_fixture->loader(),
        FolderSelectViewController::Services{m_fixture->defaults(), m_calls,
                                             [] { return QByteArray("/Users/anna"); }});
    m_page->setDelegate(&m_delegate);
    m_page->view()->show();
    QVERIFY(QTest::qWaitForWindowActive(m_page->view()));
}

void TestFolderSelectViewController::cleanup()
{
    m_disk.answer();
    m_page.reset();
    m_fixture.reset();
    m_disk.takeAskedHere();
}

void TestFolderSelectViewController::choose(const QByteArray &path)
{
    QTest::ignoreMessage(QtInfoMsg, "anna");
    QTest::mouseClick(m_page->homeButton(), Qt::LeftButton);
    QTRY_VERIFY(sheetPanel(*m_page->view()));
    QPointer<QLineEdit> nameEdit;
    QTRY_VERIFY((nameEdit = m_page->view()->window()->findChild<QLineEdit *>(
                     QStringLiteral("fileNameEdit"))));
    QTRY_VERIFY(nameEdit->isVisible());
    nameEdit->setText(QFile::decodeName(path));
    QTest::keyClick(nameEdit, Qt::Key_Return);
    QTRY_VERIFY(!nameEdit); // the panel is over
}

void TestFolderSelectViewController::startsUngranted()
{
    QCOMPARE(m_page->homeButton()->imageName(), QStringLiteral("welcomeHome"));
    QCOMPARE(m_page->homeCheck()->imageName(), QStringLiteral("welcomeCheck"));
    m_page->viewDidAppear(false);
    QCoreApplication::processEvents();
    QCOMPARE(m_delegate.moves.size(), 0);
}

void TestFolderSelectViewController::storesTheHomeAndMovesOn()
{
    QElapsedTimer sinceChoice;
    sinceChoice.start();
    choose(m_fixture->home());
    QTRY_VERIFY(hasGrant());
    QCOMPARE(m_page->homeButton()->imageName(), QStringLiteral("welcomeHomeGreen"));
    QCOMPARE(m_page->homeCheck()->imageName(), QStringLiteral("welcomeCheckGreen"));
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QVERIFY(sinceChoice.elapsed() >= 1000);
    QVERIFY(m_delegate.moves[0].isForward);
    const auto granted =
        resolveGrant(hostSystemCalls(), m_fixture->defaults().data(VNTHomeFolderString));
    QCOMPARE(granted->url.path(), m_fixture->home());
}

void TestFolderSelectViewController::acceptsOnlyFoldersNamedLikeTheHome_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isAccepted");
    QTest::addRow("the home") << QByteArray("anna") << true;
    QTest::addRow("a longer name") << QByteArray("backup/anna-old") << true;
    QTest::addRow("other case") << QByteArray("Anna") << false;
    QTest::addRow("the parent") << QByteArray() << false;
}

void TestFolderSelectViewController::acceptsOnlyFoldersNamedLikeTheHome()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, isAccepted);
    if (!name.isEmpty())
        m_fixture->folder().makeFolder(name);
    choose(name.isEmpty() ? m_fixture->folder().path() : m_fixture->folder().path(name));
    QTRY_VERIFY(!m_page->isGranting());
    QCOMPARE(hasGrant(), isAccepted);
    QVERIFY(!hasSheet(*m_page->view()));
}

void TestFolderSelectViewController::storesNothingWhenCancelled()
{
    const LogRecorder log;
    QTest::mouseClick(m_page->homeButton(), Qt::LeftButton);
    QTRY_VERIFY(sheetPanel(*m_page->view()));
    QTest::keyClick(sheetPanel(*m_page->view()), Qt::Key_Escape);
    QTRY_VERIFY(!hasSheet(*m_page->view()));
    QVERIFY(!hasGrant());
    QCOMPARE(log.lines(), QStringList{QStringLiteral("anna")}); // from when the panel opened
    QCOMPARE(m_page->homeButton()->imageName(), QStringLiteral("welcomeHome"));
}

void TestFolderSelectViewController::movesOnAfterASecond()
{
    using namespace std::chrono_literals;
    m_fixture->grantHome();
    m_page->updateUI();
    const auto hasMoved = [this] { return !m_delegate.moves.empty(); };
    QVERIFY(!seenAfter(950ms, hasMoved));
    QVERIFY(seenAfter(100ms, hasMoved));
}

void TestFolderSelectViewController::movesOnAgainWhenShownAgain()
{
    m_fixture->grantHome();
    QElapsedTimer sinceAppearance;
    sinceAppearance.start();
    m_page->viewDidAppear(true);
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QVERIFY(sinceAppearance.elapsed() >= 1000);
    m_page->viewWillDisappear(true);
    m_page->viewDidAppear(true);
    QTRY_COMPARE(m_delegate.moves.size(), 2);
    QCOMPARE(m_page->homeButton()->imageName(), QStringLiteral("welcomeHomeGreen"));
}

void TestFolderSelectViewController::staysWhenTheGrantIsTakenBackMeanwhile()
{
    m_fixture->grantHome();
    m_page->updateUI();
    m_fixture->defaults().removeFolderEntries();
    QTimer later; // started after the page's timer, it fires after that
    later.setSingleShot(true);
    QSignalSpy fired(&later, &QTimer::timeout);
    later.start(FolderSelectViewController::kPauseBeforeNextPage);
    QVERIFY(fired.wait());
    QCOMPARE(m_delegate.moves.size(), 0);
}

/// With an earlier grant the page would move on. A choice after that would belong to a page that
/// was left.
void TestFolderSelectViewController::staysBeneathThePanel()
{
    m_fixture->grantHome();
    m_page->viewDidAppear(true);
    QTest::mouseClick(m_page->homeButton(), Qt::LeftButton);
    QTRY_VERIFY(sheetPanel(*m_page->view()));
    QTimer later;
    later.setSingleShot(true);
    QSignalSpy fired(&later, &QTimer::timeout);
    later.start(FolderSelectViewController::kPauseBeforeNextPage);
    QVERIFY(fired.wait());
    QCOMPARE(m_delegate.moves.size(), 0);
    QTest::keyClick(sheetPanel(*m_page->view()), Qt::Key_Escape);
    QTRY_COMPARE(m_delegate.moves.size(), 1);
}

void TestFolderSelectViewController::waitsForTheFolderBesideTheMainThread()
{
    m_disk.hang();
    choose(m_fixture->home());
    QTRY_COMPARE(m_disk.waiting(), 1);
    QCOMPARE(m_page->homeButton()->imageName(), QStringLiteral("welcomeHome"));
    m_disk.answer();
    QTRY_VERIFY(hasGrant());
    QCOMPARE(m_page->homeButton()->imageName(), QStringLiteral("welcomeHomeGreen"));
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

void TestFolderSelectViewController::storesNothingOfAPageThatWasLeft_data()
{
    using Leave = std::function<void(FolderSelectViewController &)>;
    QTest::addColumn<Leave>("leave");
    QTest::addRow("left") << Leave([](auto &page) { page.viewWillDisappear(true); });
    QTest::addRow("begun anew") << Leave([](auto &page) { page.viewWillAppear(false); });
}

void TestFolderSelectViewController::storesNothingOfAPageThatWasLeft()
{
    QFETCH(std::function<void(FolderSelectViewController &)>, leave);
    m_disk.hang();
    choose(m_fixture->home());
    QTRY_COMPARE(m_disk.waiting(), 1);
    leave(*m_page);
    m_disk.answer();
    QTRY_VERIFY(!m_page->isGranting());
    QVERIFY(!hasGrant());
}

void TestFolderSelectViewController::tellsWhenTheFolderCannotBeGranted()
{
    m_calls.setHook([](int, std::string_view name) { return name == "identityOf" ? EIO : 0; });
    QTest::ignoreMessage(QtInfoMsg, "Error: Input/output error"); // fails where it is not written
    choose(m_fixture->home());
    QTRY_VERIFY(hasSheet(*m_page->view())); // the message
    QVERIFY(sheetText(*m_page->view()).contains(QStringLiteral("anna")));
    QVERIFY(sheetText(*m_page->view()).contains(QStringLiteral("Input/output error")));
    QVERIFY(!hasGrant());
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("OK")));
}

void TestFolderSelectViewController::ignoresAnApplicationsFolder()
{
    m_page->runSelectionPanelForFolderString(VNTApplicationFolderString);
    QTRY_VERIFY(sheetPanel(*m_page->view()));
    QLineEdit *nameEdit = nullptr;
    QTRY_VERIFY((nameEdit = m_page->view()->window()->findChild<QLineEdit *>(
                     QStringLiteral("fileNameEdit"))));
    QTRY_VERIFY(nameEdit->isVisible());
    nameEdit->setText(QFile::decodeName(m_fixture->home()));
    QTest::keyClick(nameEdit, Qt::Key_Return);
    QTRY_VERIFY(!hasSheet(*m_page->view()));
    QVERIFY(!m_page->isGranting() && !hasGrant());
    QVERIFY(!m_fixture->defaults().isStored(VNTApplicationFolderString));
}

void TestFolderSelectViewController::startsThePanelAtTheFolderOfTheKey()
{
    QCOMPARE(FolderSelectViewController::URLForFolderString(VNTApplicationFolderString),
             std::optional(QByteArray("/Applications")));
    QCOMPARE(FolderSelectViewController::URLForFolderString(VNTHomeFolderString),
             std::optional(qgetenv("HOME")));
    QVERIFY(!FolderSelectViewController::URLForFolderString(VNTTotalCleanedSize));
}

VANTOR_GUI_TEST_MAIN(TestFolderSelectViewController)
#include "tst_FolderSelectViewController.moc"
