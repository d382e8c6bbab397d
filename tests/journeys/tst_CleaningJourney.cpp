#include "app/Appearance.h"
#include "app/DiskInfoViewController.h"
#include "app/ResourceManager.h"
#include "app/SettingsKeys.h"
#include "prefs/ColorWindow.h"
#include "tests/support/GuiTestMain.h"
#include "tests/support/Journey.h"
#include "tests/support/ResourceManagerReset.h"
#include "tests/support/SampleHome.h"
#include "tests/support/SheetDriver.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QAction>
#include <QDir>
#include <QThreadPool>
#include <algorithm>

namespace {

const QList<SliceKind> kOnByDefault{SliceKind::Trash, SliceKind::Cache, SliceKind::AppLogs,
                                    SliceKind::OldIos};

} // namespace

/// The whole job at the real window, with mouse and keyboard, on a made home folder.
class TestCleaningJourney final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void grantsMeasuresCleansAndShows();
    void remembersTheGrantAndTheSelection();
    void leavesEverythingOnCancel();
    void asksNothingWhenNothingIsSelected();
    void sparesWhatIsExcluded();
    void leavesAPlaceAloneWhoseExclusionIsGone();
    void cleansNothingWhileTheExclusionsAreUnknown();
    void cleansAgainAfterScanningAgain();
    void letsNobodyLeaveWhileItCleans();

private:
    void start();
    bool reachSlices();
    QList<QByteArray> keptAfter(const QList<SliceKind> &cleaned) const;
    void exclude(const QByteArray &relativePath);

    std::unique_ptr<ScratchFolder> m_place;
    std::unique_ptr<SampleHome> m_home;
    std::unique_ptr<AppDelegate> m_application;
    std::unique_ptr<Journey> m_journey;
};

void TestCleaningJourney::initTestCase_data()
{
    // Either kind takes its minute: where both are to be travelled at once, each has a process.
    const QByteArray only = qgetenv("VANTOR_TEST_HOME");
    QTest::addColumn<HomeKind>("kind");
    if (only != "freedesktop")
        QTest::newRow("with a Library") << HomeKind::Library;
    if (only != "library")
        QTest::newRow("freedesktop") << HomeKind::Freedesktop;
}

void TestCleaningJourney::init()
{
    QFETCH_GLOBAL(const HomeKind, kind);
    m_place = std::make_unique<ScratchFolder>();
    m_home = std::make_unique<SampleHome>(*m_place, 1, kind);
}

void TestCleaningJourney::cleanup()
{
    m_journey.reset();
    m_application.reset();
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_home.reset();
    m_place.reset();
}

/// Starts the program, or starts it anew with the settings that it left.
void TestCleaningJourney::start()
{
    m_journey.reset();
    m_application.reset();
    QThreadPool::globalInstance()->waitForDone();
    ResourceManagerReset::beginRun();
    AppDelegate::Configuration configuration;
    configuration.settingsFolder = QFile::decodeName(m_place->path("settings"));
    configuration.realHomeDirectory = [this] { return m_home->path(); };
    configuration.pingHelper.program.clear();
    m_application = std::make_unique<AppDelegate>(std::move(configuration));
    m_application->applicationDidFinishLaunching();
    m_application->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_journey = std::make_unique<Journey>(*m_application);
}

bool TestCleaningJourney::reachSlices()
{
    MainWindowController &controller = m_journey->controller();
    if (!m_application->defaults().hasInitializedFolders() &&
        !(m_journey->waitForPage(controller.folderSelectPage()) &&
          m_journey->chooseHome(m_home->path())))
        return false;
    return m_journey->waitForPage(controller.diskInfoPage()) && m_journey->pressStart() &&
           m_journey->waitForPage(controller.freeSpacePage()) && m_journey->waitForMeasures();
}

QList<QByteArray> TestCleaningJourney::keptAfter(const QList<SliceKind> &cleaned) const
{
    QList<QByteArray> paths = m_home->paths();
    for (const SliceKind kind : cleaned) {
        for (const QByteArray &path : m_home->pathsCleanedWith(indexOf(kind)))
            paths.removeOne(path);
    }
    return paths;
}

void TestCleaningJourney::exclude(const QByteArray &relativePath)
{
    const FileUrl url = m_home->url(relativePath);
    m_application->defaults().setStrings(VNTExcludedPathsString,
                                         {QString::fromLatin1(url.absoluteString())});
}

void TestCleaningJourney::grantsMeasuresCleansAndShows()
{
    start();
    QVERIFY(reachSlices());
    qint64 expected = 0;
    for (int slice = 0; slice < kSliceCount; ++slice) {
        const auto &record = m_journey->controller().freeSpacePage().selection().records()[slice];
        QCOMPARE(record->fileSize(),
                 slice == indexOf(SliceKind::LargeFiles) ? 0 : m_home->bytesShownFor(slice));
        expected += record->isOn() ? m_home->bytesShownFor(slice) : 0;
    }
    QVERIFY(m_journey->pressClean(QStringLiteral("Delete Files")));
    FinalViewController &result = m_journey->controller().finalPage();
    QVERIFY(m_journey->waitForPage(result));
    QCOMPARE(m_home->presentPaths(), keptAfter(kOnByDefault));
    QCOMPARE(result.data().toLongLong(), expected);
    QCOMPARE(m_application->defaults().integer(VNTTotalCleanedSize), expected);
}

void TestCleaningJourney::remembersTheGrantAndTheSelection()
{
    start();
    QVERIFY(reachSlices());
    QVERIFY(m_journey->clickSlice(SliceKind::Downloads));
    QVERIFY(m_journey->clickSlice(SliceKind::Trash));
    m_application->applicationWillTerminate();
    start();
    QCOMPARE(m_journey->controller().currentViewController(),
             &m_journey->controller().diskInfoPage());
    QVERIFY(reachSlices());
    SliceSelection &selection = m_journey->controller().freeSpacePage().selection();
    QVERIFY(selection.record(SliceKind::Downloads).isOn());
    QVERIFY(!selection.record(SliceKind::Trash).isOn());
}

void TestCleaningJourney::leavesEverythingOnCancel()
{
    start();
    QVERIFY(reachSlices());
    QVERIFY(m_journey->pressClean(QStringLiteral("Cancel")));
    QCOMPARE(m_home->presentPaths(), m_home->paths());
    FreeSpaceViewController &page = m_journey->controller().freeSpacePage();
    QVERIFY(page.startButton()->isEnabled() && !page.isCleaning());
}

void TestCleaningJourney::asksNothingWhenNothingIsSelected()
{
    start();
    QVERIFY(reachSlices());
    for (const SliceKind kind : kOnByDefault)
        QVERIFY(m_journey->clickSlice(kind));
    m_journey->controller().freeSpacePage().next();
    QVERIFY(!hasSheet(m_journey->window()));
    QCOMPARE(m_home->presentPaths(), m_home->paths());
}

void TestCleaningJourney::sparesWhatIsExcluded()
{
    start();
    QVERIFY(reachSlices());
    exclude(SampleHome::kKeep);
    QVERIFY(m_journey->clickSlice(SliceKind::Downloads));
    QVERIFY(m_journey->pressClean(QStringLiteral("Delete Files")));
    QVERIFY(m_journey->waitForPage(m_journey->controller().finalPage()));
    QList<QByteArray> expected = keptAfter(kOnByDefault + QList{SliceKind::Downloads});
    for (const QByteArray &path : m_home->paths()) {
        if (path == SampleHome::kKeep || path.startsWith(QByteArray(SampleHome::kKeep) + '/'))
            expected.append(path);
    }
    std::ranges::sort(expected);
    QCOMPARE(m_home->presentPaths(), expected);
}

void TestCleaningJourney::leavesAPlaceAloneWhoseExclusionIsGone()
{
    start();
    QVERIFY(reachSlices());
    exclude("Downloads/moved away");
    QVERIFY(m_journey->clickSlice(SliceKind::Downloads));
    QVERIFY(m_journey->pressClean(QStringLiteral("Delete Files")));
    QVERIFY(m_journey->waitForPage(m_journey->controller().finalPage()));
    QCOMPARE(m_home->presentPaths(), keptAfter(kOnByDefault));
    QTRY_VERIFY(hasSheet(m_journey->window()));
    QVERIFY(sheetText(m_journey->window()).contains(QStringLiteral("Downloads")));
}

void TestCleaningJourney::cleansNothingWhileTheExclusionsAreUnknown()
{
    start();
    QVERIFY(reachSlices());
    exclude(SampleHome::kKeep);
    m_application->applicationWillTerminate();
    m_journey.reset();
    m_application.reset();
    const QDir settings(QFile::decodeName(m_place->path("settings")));
    for (const QString &name : settings.entryList(QDir::Files)) {
        QFile file(settings.filePath(name));
        QVERIFY(file.resize(file.size() / 2));
    }
    start();
    QTRY_VERIFY(hasSheet(m_journey->window()));
    QVERIFY(!m_application->defaults().exclusionsAreKnown());
    QVERIFY(pressSheetButton(m_journey->window(), QStringLiteral("OK")));
    QVERIFY(reachSlices());
    QVERIFY(m_journey->pressClean(QStringLiteral("Cancel")));
    QVERIFY(!m_journey->controller().freeSpacePage().isCleaning());
    QCOMPARE(m_home->presentPaths(), m_home->paths());
}

void TestCleaningJourney::cleansAgainAfterScanningAgain()
{
    start();
    QVERIFY(reachSlices());
    QVERIFY(m_journey->pressClean(QStringLiteral("Delete Files")));
    QVERIFY(m_journey->waitForPage(m_journey->controller().finalPage()));
    QVERIFY(m_journey->scanAgain());
    FreeSpaceViewController &page = m_journey->controller().freeSpacePage();
    QVERIFY(m_journey->waitForPage(page));
    QVERIFY(m_journey->waitForMeasures());
    QCOMPARE(page.selection().totalSize(), 0);
    QVERIFY(m_journey->clickSlice(SliceKind::BrowserData));
    QVERIFY(m_journey->pressClean(QStringLiteral("Delete Files")));
    QVERIFY(m_journey->waitForPage(m_journey->controller().finalPage()));
    QCOMPARE(m_home->presentPaths(), keptAfter(kOnByDefault + QList{SliceKind::BrowserData}));
}

void TestCleaningJourney::letsNobodyLeaveWhileItCleans()
{
    start();
    QVERIFY(reachSlices());
    QList<bool> allowed;
    connect(&m_journey->controller(), &MainWindowController::navigationAllowed, this, [&] {
        for (const char *name : {"goBackAction", "resetHomeFolderAction"})
            allowed.append(
                m_journey->window().findChild<QAction *>(QLatin1String(name))->isEnabled());
    });
    QVERIFY(m_journey->pressClean(QStringLiteral("Delete Files")));
    QVERIFY(m_journey->waitForPage(m_journey->controller().finalPage()));
    QCOMPARE(allowed, QList<bool>({false, false, true, true}));
}

VANTOR_GUI_TEST_MAIN(TestCleaningJourney)
#include "tst_CleaningJourney.moc"
