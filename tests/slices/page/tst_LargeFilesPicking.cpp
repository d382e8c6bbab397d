#include "slices/page/LargeFilesPicking.h"

#include "app/grant/ResourceManager.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/system/Moment.h"
#include "slices/page/HomeWatch.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/GuiTestMain.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <cerrno>
#include <chrono>
#include <semaphore>

namespace {

constexpr qint64 kFilm = 300'000'000;

} // namespace

/// How files come from the sheet to the slice's record. A window is there, but no page.
class TestLargeFilesPicking final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void holdsTheAccessWhileTheSheetIsUp();
    void givesTheRecordWhatWasPicked();
    void remembersWhenItWasPicked();
    void remembersWhatWasPicked();
    void countsOnlyWhatMayBeDeleted();
    void staysShutWhenItMayNotPick_data();
    void staysShutWhenItMayNotPick();
    void changesNothingOnceTheRecordIsCleaned();
    void followsASizeThatIsReadLate();
    void findsNothingPickedOnceItIsDropped();
    void searchesAgainWhenItIsDroppedUnderTheSheet();

private:
    void openSheet();
    void endSheet(QAbstractButton *button);
    LargeFilesWindowController &sheet() { return m_picking->windowController(); }
    Info &record() { return m_selection->record(SliceKind::LargeFiles); }
    FileUrl film() const
    {
        return m_fixture->homeUrl().appending("Movies/film.mov", FileUrlKind::File);
    }

    HookedSystem m_calls;
    bool m_grantIsUsable = true;
    bool m_mayPick = true;
    bool m_mayChange = true;
    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<SliceSelection> m_selection;
    std::unique_ptr<HomeWatch> m_home;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<LargeFilesPicking> m_picking;
};

void TestLargeFilesPicking::init()
{
    m_grantIsUsable = m_mayPick = m_mayChange = true;
    m_calls.setHook({});
    m_fixture = std::make_unique<PageFixture>();
    m_fixture->grantHome();
    m_fixture->makeFile("Movies/film.mov", kFilm);
    m_selection =
        std::make_unique<SliceSelection>(m_fixture->defaults(), ResourceManager::access());
    m_home = std::make_unique<HomeWatch>(HomeWatch::Services{m_calls, ResourceManager::access(),
                                                             &ResourceManager::homeFolder,
                                                             [] { return true; }},
                                         *m_selection);
    m_home->look();
    m_window = std::make_unique<QWidget>();
    m_window->resize(800, 600);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_picking = std::make_unique<LargeFilesPicking>(
        *m_window, LargeFilesPicking::Services{
                       m_fixture->loader(), m_fixture->defaults(), m_calls,
                       ResourceManager::access(), m_fixture->workspace(), *m_home, *m_selection,
                       [this](const auto &then, const auto &otherwise) {
                           (m_grantIsUsable ? then : otherwise)();
                       },
                       [this] { return m_mayPick; }, [this] { return m_mayChange; }});
}

void TestLargeFilesPicking::cleanup()
{
    m_picking.reset();
    m_window.reset();
    m_home.reset();
    awaitBackgroundThreads();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_selection.reset();
    m_fixture.reset();
}

void TestLargeFilesPicking::openSheet()
{
    m_picking->pick();
    QVERIFY(m_picking->isPicking());
    QTRY_VERIFY(!sheet().search().isRunning());
}

void TestLargeFilesPicking::endSheet(QAbstractButton *button)
{
    sheet().dismissPanel(button);
    QTRY_VERIFY(!hasSheet(*m_window));
}

void TestLargeFilesPicking::holdsTheAccessWhileTheSheetIsUp()
{
    openSheet();
    QCOMPARE(sheetPanel(*m_window), sheet().window());
    QTRY_COMPARE(ResourceManager::accessCount(), 1); // but for what reads beside the main thread
    endSheet(sheet().cancelButton());
    QVERIFY(!m_picking->isPicking());
    QTRY_COMPARE(ResourceManager::accessCount(), 0);
}

void TestLargeFilesPicking::givesTheRecordWhatWasPicked()
{
    QSignalSpy picked(m_picking.get(), &LargeFilesPicking::picked);
    openSheet();
    sheet().addButtonPressed(0);
    QVERIFY(!record().isOn());
    endSheet(sheet().addButton());
    QCOMPARE(picked.size(), 1);
    QVERIFY(record().isOn());
    QCOMPARE(record().fileURLs().value_or(FileUrls()), FileUrls{film()});
    QCOMPARE(record().fileSize(), kFilm);
    QCOMPARE(record().fileSizeString().value_or(QString()), QStringLiteral("300 MB"));
    openSheet();
    endSheet(sheet().cancelButton());
    QCOMPARE(picked.size(), 2);
    QVERIFY(!record().isOn());
    QCOMPARE(record().fileURLs().value_or(FileUrls()), FileUrls());
    QCOMPARE(record().fileSizeString().value_or(QString()), QStringLiteral("Click to select"));
}

/// A file that was replaced since then is not what the user has picked.
void TestLargeFilesPicking::remembersWhenItWasPicked()
{
    openSheet();
    const auto before = std::chrono::system_clock::now();
    sheet().addButtonPressed(0);
    const auto after = std::chrono::system_clock::now();
    endSheet(sheet().addButton());
    const Moment moment = record().choice().value_or(Confirmation()).moment;
    const std::chrono::sys_time<std::chrono::nanoseconds> chosen(
        std::chrono::nanoseconds(moment.precise));
    QVERIFY(before <= chosen && chosen <= after);
}

/// Also where its folder has been exchanged since then, which the file's own times do not tell.
void TestLargeFilesPicking::remembersWhatWasPicked()
{
    openSheet();
    const auto found = [this] {
        const AccessScope scope(ResourceManager::access());
        return lookAtLocations(m_calls, ResourceManager::access(), {film()}).value(film().path());
    };
    const FileIdentity before = found();
    const auto remembered = [this] {
        return record().choice().value_or(Confirmation()).locations.value(film().path());
    };
    std::binary_semaphore isGone(0);
    m_calls.setHook([&](int, std::string_view name) {
        if (name == "identity")
            isGone.acquire();
        return 0;
    });
    sheet().addButtonPressed(0);
    endSheet(sheet().addButton());
    QVERIFY(remembered() == FileIdentity()); // the disk is slow, the user is not
    isGone.release();
    QTRY_COMPARE(remembered(), before);
    awaitBackgroundThreads();
    m_calls.setHook({});
    m_fixture->makeFile("Movies.new/film.mov", kFilm + 1);
    QDir home(QFile::decodeName(m_fixture->home()));
    QVERIFY(home.rename(QStringLiteral("Movies"), QStringLiteral("Movies.old")));
    QVERIFY(home.rename(QStringLiteral("Movies.new"), QStringLiteral("Movies")));
    QVERIFY(found() != before);
    QSignalSpy changed(m_picking.get(), &LargeFilesPicking::sizeChanged);
    sheet().array().refreshSizes();
    QVERIFY(changed.wait());
    QCOMPARE(remembered(), before);
}

/// The size text is the size on the disk; the slice's size is what a cleaning frees.
void TestLargeFilesPicking::countsOnlyWhatMayBeDeleted()
{
    openSheet();
    sheet().addButtonPressed(0);
    endSheet(sheet().addButton());
    QTRY_COMPARE(record().fileSize(), kFilm);
    awaitBackgroundThreads();
    // As in a folder that is read-only: for the administrator none is.
    m_calls.setHook(
        [](int, std::string_view name) { return name == "mayChangeEntries" ? EROFS : 0; });
    QSignalSpy changed(m_picking.get(), &LargeFilesPicking::sizeChanged);
    sheet().array().refreshSizes();
    QVERIFY(changed.wait());
    QCOMPARE(record().fileSize(), 0);
    QCOMPARE(record().fileSizeString().value_or(QString()), QStringLiteral("300 MB"));
    QCOMPARE(record().fileURLs().value_or(FileUrls()), FileUrls{film()});
}

void TestLargeFilesPicking::staysShutWhenItMayNotPick_data()
{
    QTest::addColumn<bool>("grantIsUsable");
    QTest::addColumn<bool>("mayPick");
    QTest::addRow("by the grant") << false << true;
    QTest::addRow("by the page") << true << false;
}

void TestLargeFilesPicking::staysShutWhenItMayNotPick()
{
    QFETCH(bool, grantIsUsable);
    QFETCH(bool, mayPick);
    m_grantIsUsable = grantIsUsable;
    m_mayPick = mayPick;
    m_picking->pick();
    QVERIFY(!m_picking->isPicking());
    QVERIFY(!hasSheet(*m_window));
}

void TestLargeFilesPicking::changesNothingOnceTheRecordIsCleaned()
{
    QSignalSpy picked(m_picking.get(), &LargeFilesPicking::picked);
    openSheet();
    sheet().addButtonPressed(0);
    m_mayChange = false;
    endSheet(sheet().addButton());
    QVERIFY(!m_picking->isPicking());
    QCOMPARE(picked.size(), 0);
    QVERIFY(!record().isOn());
}

void TestLargeFilesPicking::followsASizeThatIsReadLate()
{
    openSheet();
    sheet().addButtonPressed(0);
    endSheet(sheet().addButton());
    QSignalSpy changed(m_picking.get(), &LargeFilesPicking::sizeChanged);
    QVERIFY(QFile::resize(QFile::decodeName(film().path()), kFilm / 3));
    sheet().array().refreshSizes();
    QVERIFY(changed.wait());
    QCOMPARE(record().fileSize(), kFilm / 3);
    QCOMPARE(record().fileSizeString().value_or(QString()), QStringLiteral("100 MB"));
}

void TestLargeFilesPicking::findsNothingPickedOnceItIsDropped()
{
    m_picking->drop(); // nothing is there to be dropped
    openSheet();
    sheet().addButtonPressed(0);
    endSheet(sheet().addButton());
    m_picking->drop();
    QVERIFY(sheet().selectedURLs().isEmpty());
    QCOMPARE(sheet().array().rowCount(), 0);
    QVERIFY(!sheet().search().isRunning());
}

void TestLargeFilesPicking::searchesAgainWhenItIsDroppedUnderTheSheet()
{
    openSheet();
    sheet().addButtonPressed(0);
    m_picking->drop();
    QVERIFY(sheet().search().isRunning());
    QTRY_COMPARE(sheet().array().rowCount(), 1);
    QVERIFY(sheet().selectedURLs().isEmpty());
    QTRY_VERIFY(!sheet().search().isRunning());
    endSheet(sheet().addButton());
    QVERIFY(!record().isOn());
}

VANTOR_GUI_TEST_MAIN(TestLargeFilesPicking)
#include "tst_LargeFilesPicking.moc"
