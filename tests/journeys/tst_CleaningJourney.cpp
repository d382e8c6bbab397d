#include "app/Appearance.h"
#include "app/grant/ResourceManager.h"
#include "app/pages/DiskInfoViewController.h"
#include "app/settings/SettingsKeys.h"
#include "platform/look/Pace.h"
#include "platform/sheet/SheetSlide.h"
#include "prefs/window/ColorWindow.h"
#include "tests/journeys/JourneyFixture.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QAction>
#include <QDir>
#include <QElapsedTimer>
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
    void takesNoDoubleClickForConsent_data();
    void takesNoDoubleClickForConsent();
    void asksNothingWhenNothingIsSelected();
    void sparesWhatIsExcluded();
    void leavesAPlaceAloneWhoseExclusionIsGone();
    void cleansNothingWhileTheExclusionsAreUnknown();
    void cleansAgainAfterScanningAgain();
    void letsNobodyLeaveWhileItCleans();

private:
    void exclude(const QByteArray &relativePath);

    Journey &journey() const { return m_fixture->journey(); }
    const SampleHome &home() const { return m_fixture->home(); }

    std::unique_ptr<JourneyFixture> m_fixture;
};

void TestCleaningJourney::initTestCase_data()
{
    addKindsOfHomes();
}

void TestCleaningJourney::init()
{
    QFETCH_GLOBAL(const HomeKind, kind);
    m_fixture = std::make_unique<JourneyFixture>(kind);
    m_fixture->start();
}

void TestCleaningJourney::cleanup()
{
    m_fixture->quit();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

void TestCleaningJourney::exclude(const QByteArray &relativePath)
{
    const FileUrl url = home().url(relativePath);
    m_fixture->application().defaults().setStrings(VNTExcludedPathsString,
                                                   {QString::fromLatin1(url.absoluteString())});
}

void TestCleaningJourney::grantsMeasuresCleansAndShows()
{
    m_fixture->start(JourneyFixture::Tutorial::Declined, JourneyFixture::Pace::User);
    QVERIFY(m_fixture->reachSlices());
    qint64 expected = 0;
    for (int slice = 0; slice < kSliceCount; ++slice) {
        const auto &record = m_fixture->slicesPage().selection().records()[slice];
        QCOMPARE(record->fileSize(),
                 slice == indexOf(SliceKind::LargeFiles) ? 0 : home().bytesShownFor(slice));
        expected += record->isOn() ? home().bytesShownFor(slice) : 0;
    }
    QVERIFY(journey().pressClean(QStringLiteral("Delete Files")));
    FinalViewController &result = journey().controller().finalPage();
    QVERIFY(journey().waitForPage(result));
    QCOMPARE(home().presentPaths(), m_fixture->keptAfter(kOnByDefault));
    QCOMPARE(result.data().toLongLong(), expected);
    QCOMPARE(m_fixture->application().defaults().integer(VNTTotalCleanedSize), expected);
}

void TestCleaningJourney::remembersTheGrantAndTheSelection()
{
    QVERIFY(m_fixture->reachSlices());
    QVERIFY(journey().clickSlice(SliceKind::Downloads));
    QVERIFY(journey().clickSlice(SliceKind::Trash));
    m_fixture->start();
    QCOMPARE(journey().controller().currentViewController(),
             &journey().controller().diskInfoPage());
    QVERIFY(m_fixture->reachSlices());
    SliceSelection &selection = m_fixture->slicesPage().selection();
    QVERIFY(selection.record(SliceKind::Downloads).isOn());
    QVERIFY(!selection.record(SliceKind::Trash).isOn());
}

void TestCleaningJourney::leavesEverythingOnCancel()
{
    QVERIFY(m_fixture->reachSlices());
    QVERIFY(journey().pressClean(QStringLiteral("Cancel")));
    QCOMPARE(home().presentPaths(), home().paths());
    FreeSpaceViewController &page = m_fixture->slicesPage();
    QVERIFY(page.startButton()->isEnabled() && !page.isCleaning());
}

void TestCleaningJourney::takesNoDoubleClickForConsent_data()
{
    QTest::addColumn<int>("pause"); // from the first click to the second
    for (const int pause : {250, 300, 350, 400, 450})
        QTest::addRow("%d ms", pause) << pause;
}

/// The sheet has slid in when the second click comes. The click finds the button, as a finger or a
/// hand that moves may do. Only a click after that, made when the question can have been read, is
/// an answer.
void TestCleaningJourney::takesNoDoubleClickForConsent()
{
    QFETCH(const int, pause);
    QVERIFY(m_fixture->reachSlices());
    setPace(1);
    ColorWindow &window = journey().window();
    const auto click = [&window](const QWidget &target) {
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                          target.mapTo(&window, target.rect().center()));
    };
    QElapsedTimer sinceFirst;
    sinceFirst.start();
    click(*m_fixture->slicesPage().startButton());
    QVERIFY(journey().waitForSheet());
    QTRY_VERIFY(sinceFirst.elapsed() >= pause);
    QAbstractButton *const destroys = sheetButton(window, QStringLiteral("Delete Files"));
    click(*destroys);
    QTest::keyClick(destroys, Qt::Key_Space);
    QVERIFY(!window.findChild<SheetSlide *>()); // it does not leave
    QTRY_VERIFY(pressGuard(window)->takesPresses());
    QVERIFY(hasSheet(window) && !m_fixture->slicesPage().isCleaning());
    QCOMPARE(home().presentPaths(), home().paths());
    click(*destroys);
    QVERIFY(journey().waitForPage(journey().controller().finalPage()));
    QCOMPARE(home().presentPaths(), m_fixture->keptAfter(kOnByDefault));
}

void TestCleaningJourney::asksNothingWhenNothingIsSelected()
{
    QVERIFY(m_fixture->reachSlices());
    for (const SliceKind kind : kOnByDefault)
        QVERIFY(journey().clickSlice(kind));
    m_fixture->slicesPage().next();
    QVERIFY(!hasSheet(journey().window()));
    QCOMPARE(home().presentPaths(), home().paths());
}

void TestCleaningJourney::sparesWhatIsExcluded()
{
    QVERIFY(m_fixture->reachSlices());
    exclude(SampleHome::kKeep);
    QVERIFY(journey().clickSlice(SliceKind::Downloads));
    QVERIFY(journey().pressClean(QStringLiteral("Delete Files")));
    QVERIFY(journey().waitForPage(journey().controller().finalPage()));
    QList<QByteArray> expected = m_fixture->keptAfter(kOnByDefault + QList{SliceKind::Downloads});
    for (const QByteArray &path : home().paths()) {
        if (path == SampleHome::kKeep || path.startsWith(QByteArray(SampleHome::kKeep) + '/'))
            expected.append(path);
    }
    std::ranges::sort(expected);
    QCOMPARE(home().presentPaths(), expected);
}

void TestCleaningJourney::leavesAPlaceAloneWhoseExclusionIsGone()
{
    QVERIFY(m_fixture->reachSlices());
    exclude("Downloads/moved away");
    QVERIFY(journey().clickSlice(SliceKind::Downloads));
    QVERIFY(journey().pressClean(QStringLiteral("Delete Files")));
    QVERIFY(journey().waitForPage(journey().controller().finalPage()));
    QCOMPARE(home().presentPaths(), m_fixture->keptAfter(kOnByDefault));
    QTRY_VERIFY(hasSheet(journey().window()));
    QVERIFY(sheetText(journey().window()).contains(QStringLiteral("Downloads")));
    QVERIFY(pressSheetButton(journey().window(), QStringLiteral("OK")));
    journey().press(Qt::Key_Return); // goes on
    QVERIFY(journey().waitForPage(m_fixture->slicesPage()));
}

void TestCleaningJourney::cleansNothingWhileTheExclusionsAreUnknown()
{
    QVERIFY(m_fixture->reachSlices());
    exclude(SampleHome::kKeep);
    m_fixture->quit();
    const QDir settings(QFile::decodeName(m_fixture->place().path("settings")));
    for (const QString &name : settings.entryList(QDir::Files)) {
        QFile file(settings.filePath(name));
        QVERIFY(file.resize(file.size() / 2));
    }
    m_fixture->start();
    QTRY_VERIFY(hasSheet(journey().window()));
    QVERIFY(!m_fixture->application().defaults().exclusionsAreKnown());
    QVERIFY(pressSheetButton(journey().window(), QStringLiteral("OK")));
    QVERIFY(m_fixture->reachSlices());
    QVERIFY(journey().pressClean(QStringLiteral("Cancel")));
    QVERIFY(!m_fixture->slicesPage().isCleaning());
    QCOMPARE(home().presentPaths(), home().paths());
}

void TestCleaningJourney::cleansAgainAfterScanningAgain()
{
    QVERIFY(m_fixture->reachSlices());
    QVERIFY(journey().pressClean(QStringLiteral("Delete Files")));
    QVERIFY(journey().waitForPage(journey().controller().finalPage()));
    QVERIFY(journey().scanAgain());
    FreeSpaceViewController &page = m_fixture->slicesPage();
    QVERIFY(journey().waitForPage(page));
    QVERIFY(journey().waitForMeasures());
    QCOMPARE(page.selection().totalSize(), 0);
    QVERIFY(journey().clickSlice(SliceKind::BrowserData));
    QVERIFY(journey().pressClean(QStringLiteral("Delete Files")));
    QVERIFY(journey().waitForPage(journey().controller().finalPage()));
    QCOMPARE(home().presentPaths(),
             m_fixture->keptAfter(kOnByDefault + QList{SliceKind::BrowserData}));
}

void TestCleaningJourney::letsNobodyLeaveWhileItCleans()
{
    QVERIFY(m_fixture->reachSlices());
    QList<bool> allowed;
    connect(&journey().controller(), &MainWindowController::navigationAllowed, this, [&] {
        for (const char *name : {"goBackAction", "resetHomeFolderAction"})
            allowed.append(
                journey().window().findChild<QAction *>(QLatin1String(name))->isEnabled());
    });
    QVERIFY(journey().pressClean(QStringLiteral("Delete Files")));
    QVERIFY(journey().waitForPage(journey().controller().finalPage()));
    QCOMPARE(allowed, QList<bool>({false, false, true, true}));
}

VANTOR_GUI_TEST_MAIN(TestCleaningJourney)
#include "tst_CleaningJourney.moc"
