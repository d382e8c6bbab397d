#include "slices/page/SliceHover.h"

#include "app/grant/ResourceManager.h"
#include "chart/PieChart.h"
#include "platform/sheet/Alert.h"
#include "prefs/popover/Popover.h"
#include "slices/page/CleaningText.h"
#include "slices/page/HomeWatch.h"
#include "slices/page/SliceHoverButtons.h"
#include "tests/support/calls/MadeMachine.h"
#include "tests/support/calls/SlowDisk.h"
#include "tests/support/page/FirefoxProfiles.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/ImageButton.h"

#include <QLabel>
#include <QSignalSpy>

/// What is offered for the slice under the pointer. A chart is there, but no page.
class TestSliceHover final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void offersToRevealSomeSlices_data();
    void offersToRevealSomeSlices();
    void offersOldUpdatesOnceTheDiskHasSaidSo();
    void offersNothingOfASliceThatThePointerHasLeft();
    void doesNothingForNoSlice();
    void explainsTheSliceAtItsButton();
    void tellsWhatStaysOfTheCache();
    void tellsWhereProgramsCannotBeSeen();
    void explainsNothingOfASliceThatThePointerHasLeft();
    void explainsWhatIsKeptAmongTheCaches();
    void showsThePlacesThatAreThere();
    void opensTheTrash();
    void saysThatTheTrashIsEmptyWhereThereIsNone();
    void answersNothingOnceItIsStopped();

private:
    void begin(HomeKind kind) { begin(kind, m_disk.calls()); }
    void begin(HomeKind kind, const SystemCalls &calls);
    QString description(SliceKind kind);
    void moveTo(SliceKind kind) { m_hover->moveTo(indexOf(kind)); }
    bool isRevealOffered() const { return m_hover->buttons().showInFinderButton()->isVisible(); }
    Popover *popover() const { return m_window->findChild<Popover *>(); }
    /// Whatever the disk was asked has been answered.
    void settle()
    {
        awaitBackgroundThreads();
        QCoreApplication::processEvents();
    }

    SlowDisk m_disk;
    MadeMachine m_container;
    QStringList m_told;
    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<SliceSelection> m_selection;
    std::unique_ptr<HomeWatch> m_home;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<SliceHover> m_hover;
};

void TestSliceHover::begin(HomeKind kind, const SystemCalls &calls)
{
    m_told.clear();
    m_fixture = std::make_unique<PageFixture>(kind);
    m_fixture->grantHome();
    QVERIFY(ResourceManager::homeFolder() == m_fixture->homeUrl());
    m_fixture->makeFile(".mozilla/firefox/x.default/cookies.sqlite", 500);
    listFirefoxProfiles(m_fixture->home() + "/.mozilla/firefox", {"x.default"});
    m_selection =
        std::make_unique<SliceSelection>(m_fixture->defaults(), ResourceManager::access());
    m_home = std::make_unique<HomeWatch>(HomeWatch::Services{calls, ResourceManager::access(),
                                                             &ResourceManager::homeFolder,
                                                             [] { return true; }},
                                         *m_selection);
    m_window = std::make_unique<QWidget>();
    auto *const chart = new PieChart(QRect(0, 0, 500, 500), m_window.get());
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_hover = std::make_unique<SliceHover>(
        *chart, SliceHover::Services{
                    calls, ResourceManager::access(), m_fixture->workspace(), *m_home, *m_selection,
                    [this](const Alert &alert) { m_told.append(alert.messageText); }});
    m_home->look();
    QTRY_VERIFY(m_home->isKnown());
    m_disk.takeAskedHere();
}

void TestSliceHover::cleanup()
{
    m_disk.answer();
    m_hover.reset();
    m_window.reset();
    m_home.reset();
    awaitBackgroundThreads();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_selection.reset();
    m_fixture.reset();
}

void TestSliceHover::offersToRevealSomeSlices_data()
{
    QTest::addColumn<SliceKind>("kind");
    QTest::addColumn<bool>("isOffered");
    QTest::addRow("Trash") << SliceKind::Trash << true;
    QTest::addRow("Large Files") << SliceKind::LargeFiles << false;
    QTest::addRow("Cache") << SliceKind::Cache << false;
    QTest::addRow("App Logs") << SliceKind::AppLogs << false;
    QTest::addRow("Downloads") << SliceKind::Downloads << true;
    QTest::addRow("Mail Downloads") << SliceKind::MailDownloads << true;
    QTest::addRow("Browser Data") << SliceKind::BrowserData << false;
}

void TestSliceHover::offersToRevealSomeSlices()
{
    QFETCH(SliceKind, kind);
    begin(HomeKind::Library);
    moveTo(kind);
    QVERIFY(m_hover->buttons().infoButton()->isVisible());
    QTEST(isRevealOffered(), "isOffered");
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
    m_hover->moveTo(SliceHoverButtons::kNoSlice);
    QVERIFY(!m_hover->buttons().infoButton()->isVisible());
    QVERIFY(!isRevealOffered());
}

void TestSliceHover::offersOldUpdatesOnceTheDiskHasSaidSo()
{
    begin(HomeKind::Library);
    moveTo(SliceKind::OldIos);
    settle();
    QVERIFY(!isRevealOffered()); // there are none
    m_hover->forget();
    m_fixture->makeFolder("Library/iTunes/iPod Software Updates");
    moveTo(SliceKind::OldIos);
    QVERIFY(!isRevealOffered());
    QTRY_VERIFY(isRevealOffered());
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

void TestSliceHover::offersNothingOfASliceThatThePointerHasLeft()
{
    begin(HomeKind::Library);
    m_fixture->makeFolder("Library/iTunes/iPod Software Updates");
    m_disk.hang();
    moveTo(SliceKind::OldIos);
    QTRY_COMPARE(m_disk.waiting(), 1);
    moveTo(SliceKind::Cache);
    m_disk.answer();
    settle();
    QVERIFY(!isRevealOffered());
}

void TestSliceHover::doesNothingForNoSlice()
{
    begin(HomeKind::Library);
    m_hover->showInfo();
    m_hover->showInFinder();
    settle();
    QVERIFY(!popover());
    QVERIFY(m_fixture->workspace().opened.isEmpty() && m_fixture->workspace().revealed.isEmpty());
}

void TestSliceHover::explainsTheSliceAtItsButton()
{
    begin(HomeKind::Library);
    QCOMPARE(description(SliceKind::Trash), m_home->layout().details(SliceKind::Trash));
    QCOMPARE(description(SliceKind::Cache), m_home->layout().details(SliceKind::Cache));
}

QString TestSliceHover::description(SliceKind kind)
{
    while (popover())
        delete popover(); // of an earlier description
    moveTo(kind);
    QTest::mouseClick(m_hover->buttons().infoButton(), Qt::LeftButton);
    QString text;
    if (QTest::qWaitFor([&] { return popover() != nullptr; })) {
        for (const QLabel *label : popover()->findChildren<QLabel *>())
            text += label->text();
    }
    return text;
}

void TestSliceHover::tellsWhatStaysOfTheCache()
{
    begin(HomeKind::Freedesktop);
    m_fixture->makeFile(".cache/a", 5);
    m_home->look();
    QTRY_VERIFY(m_home->isKnown());
    QVERIFY(description(SliceKind::Cache).endsWith(cacheInUseText(ProgramsSeen::All)));
    QVERIFY(!description(SliceKind::AppLogs).contains(cacheInUseText(ProgramsSeen::All)));
}

void TestSliceHover::tellsWhereProgramsCannotBeSeen()
{
    m_container.isSeenWhole = false;
    begin(HomeKind::Freedesktop, m_container);
    m_fixture->makeFile(".cache/mozilla/a", 5);
    m_home->look();
    QTRY_VERIFY(m_home->isKnown());
    const QString text = description(SliceKind::Cache);
    QVERIFY(text.contains(QStringLiteral(" Firefox may be in use: its files stay.")));
    QVERIFY(text.endsWith(cacheInUseText(ProgramsSeen::Some)));
}

void TestSliceHover::explainsWhatIsKeptAmongTheCaches()
{
    begin(HomeKind::Freedesktop);
    m_fixture->makeFile(".cache/rclone/vfs/a", 1'500'000);
    m_fixture->makeFile(".cache/rclone/vfsMeta/a", 500'000);
    m_fixture->makeFile(".cache/sessions/a", 1000);
    m_fixture->makeFile(".cache/other", 7000);
    m_home->look();
    QTRY_VERIFY(m_home->isKnown());
    settle();
    QCOMPARE(m_selection->record(SliceKind::Cache).fileSizeString().value_or(QString()),
             QStringLiteral("7 KB"));
    QVERIFY(description(SliceKind::Cache)
                .contains(QStringLiteral(
                    " Not removed, because it is no cache: files that wait to be uploaded (2 MB)"
                    " and saved sessions of the desktop (1 KB).")));
}

void TestSliceHover::explainsNothingOfASliceThatThePointerHasLeft()
{
    begin(HomeKind::Freedesktop);
    m_disk.hang();
    moveTo(SliceKind::BrowserData);
    m_hover->showInfo(); // looks for its programs first
    QTRY_VERIFY(m_disk.waiting() > 0);
    moveTo(SliceKind::Cache);
    m_disk.answer();
    settle();
    QVERIFY(!popover());
    m_hover->showInfo();
    QTRY_VERIFY(popover());
}

/// Also when the pointer has left the slice, on its way to the file manager.
void TestSliceHover::showsThePlacesThatAreThere()
{
    begin(HomeKind::Library);
    m_fixture->makeFolder("Downloads");
    moveTo(SliceKind::Downloads);
    QTest::mouseClick(m_hover->buttons().showInFinderButton(), Qt::LeftButton);
    m_hover->moveTo(SliceHoverButtons::kNoSlice);
    QTRY_COMPARE(m_fixture->workspace().revealed.size(), 1);
    QCOMPARE(m_fixture->workspace().revealed[0],
             FileUrls{m_fixture->homeUrl().appending("Downloads", FileUrlKind::Folder)});
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

void TestSliceHover::opensTheTrash()
{
    begin(HomeKind::Library);
    moveTo(SliceKind::Trash);
    m_hover->showInFinder();
    QCOMPARE(m_fixture->workspace().opened.value(0).path(QUrl::FullyDecoded),
             QString::fromUtf8(m_fixture->home() + "/.Trash/"));
}

void TestSliceHover::saysThatTheTrashIsEmptyWhereThereIsNone()
{
    begin(HomeKind::Freedesktop);
    moveTo(SliceKind::Trash);
    m_hover->showInFinder();
    QTRY_COMPARE(m_told, QStringList{QStringLiteral("The Trash is empty.")});
    QVERIFY(m_fixture->workspace().opened.isEmpty());
    m_fixture->makeFolder(".local/share/Trash/files");
    m_hover->showInFinder();
    QTRY_COMPARE(m_fixture->workspace().opened.size(), 1);
    QCOMPARE(m_told.size(), 1);
}

void TestSliceHover::answersNothingOnceItIsStopped()
{
    begin(HomeKind::Freedesktop);
    m_fixture->makeFolder(".local/share/Trash/files");
    m_disk.hang();
    moveTo(SliceKind::Trash);
    m_hover->showInFinder();
    m_hover->showInfo();
    QTRY_COMPARE(m_disk.waiting(), 2);
    m_hover->stop();
    m_disk.answer();
    settle();
    QVERIFY(m_fixture->workspace().opened.isEmpty());
    QVERIFY(!popover());
    QCOMPARE(m_hover->buttons().currentHoverIndex(), SliceHoverButtons::kNoSlice);
}

VANTOR_GUI_TEST_MAIN(TestSliceHover)
#include "tst_SliceHover.moc"
