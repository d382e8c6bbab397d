#include "platform/system/HostSystemCalls.h"
#include "slices/page/SliceSelection.h"

#include "app/grant/ResourceManager.h"
#include "app/settings/SettingsKeys.h"
#include "platform/look/Images.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "tests/support/calls/MadeMachine.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/run/GuiTestMain.h"

#include <QFile>
#include <QSignalSpy>

namespace {

const QList<bool> kDefaultSelection{true, false, true, true, true, false, false, false};

/// Counts who works with the granted folder.
class CountingAccess final : public FileAccess
{
public:
    void startAccessing() override { ++started; }
    void stopAccessing() override { ++stopped; }
    std::optional<AnchoredPath> anchoredPath(const FileUrl &) const override
    {
        return std::nullopt;
    }

    int started = 0;
    int stopped = 0;
};

} // namespace

class TestSliceSelection final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void hasADrawingOfEachSlice();
    void startsWithTheDefaultSelection();
    void switchesAllButLargeFilesOnWithoutAnySelection();
    void restoresAStoredSelection_data();
    void restoresAStoredSelection();
    void neverStoresLargeFilesAsOn();
    void presetsTheTextOfLargeFiles();
    void togglesASlice();
    void keepsAnExcludedSliceOff();
    void needsAllLocationsExcluded();
    void countsPlacesInUseAsPlacesOfTheSlice();
    void excludesNothingByParentOrPrefix();
    void switchesOffWhatBecomesExcluded();
    void doesNotSwitchOnWhatIsNoLongerExcluded();
    void dropsPickedLargeFilesWhenTheExclusionsChange();
    void addsUpWhatIsOn();
    void balancesItsAccess();
    void comparesWithinTheAccess();

private:
    QList<bool> states() const;
    void exclude(const QByteArrayList &relativePaths);
    void rebuildWithOneOfTwoInUse();

    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<SliceSelection> m_selection;
};

void TestSliceSelection::init()
{
    m_fixture = std::make_unique<PageFixture>();
    m_fixture->grantHome();
    m_selection =
        std::make_unique<SliceSelection>(m_fixture->defaults(), ResourceManager::access());
    m_selection->rebuild(HomeLayout::withLibrary(m_fixture->homeUrl()), {});
}

void TestSliceSelection::cleanup()
{
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_selection.reset();
    m_fixture.reset();
}

QList<bool> TestSliceSelection::states() const
{
    QList<bool> states;
    for (const auto &record : m_selection->records())
        states.append(record->isOn());
    return states;
}

void TestSliceSelection::exclude(const QByteArrayList &relativePaths)
{
    QStringList urls;
    for (const QByteArray &path : relativePaths)
        urls.append(QString::fromLatin1(
            m_fixture->homeUrl().appending(path, FileUrlKind::Folder).absoluteString()));
    m_fixture->defaults().setStrings(VNTExcludedPathsString, urls);
}

void TestSliceSelection::hasADrawingOfEachSlice()
{
    QCOMPARE(m_selection->records().size(), sliceCatalogue().size());
    for (const auto &record : m_selection->records())
        QVERIFY2(hasImageNamed(record->image()), qPrintable(record->image()));
}

void TestSliceSelection::startsWithTheDefaultSelection()
{
    QCOMPARE(states(), kDefaultSelection);
}

void TestSliceSelection::switchesAllButLargeFilesOnWithoutAnySelection()
{
    UserDefaults empty(QFile::decodeName(m_fixture->folder().path("empty")), hostSystemCalls());
    QVERIFY(!empty.isStored(VNTSelectedSlicesString));
    SliceSelection selection(empty, ResourceManager::access());
    selection.rebuild(HomeLayout::withLibrary(m_fixture->homeUrl()), {});
    for (const auto &record : selection.records())
        QCOMPARE(record->isOn(), record.get() != &selection.record(SliceKind::LargeFiles));
}

void TestSliceSelection::restoresAStoredSelection_data()
{
    QTest::addColumn<QList<bool>>("stored");
    QTest::addColumn<QList<bool>>("states");
    const QList<bool> all{true, false, true, true, true, true, true, true};
    const QList<bool> some{false, false, false, true, false, true, false, true};
    QTest::addRow("eight") << some << some;
    QTest::addRow("none at all") << QList<bool>() << all;
    QTest::addRow("one") << QList<bool>{false}
                         << QList<bool>{false, false, true, true, true, true, true, true};
    QTest::addRow("longer than eight") << (some + QList<bool>{true, true}) << some;
    QTest::addRow("large files on") << QList<bool>{true, true} << all;
}

void TestSliceSelection::restoresAStoredSelection()
{
    QFETCH(QList<bool>, stored);
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString, stored);
    m_selection->rebuild(HomeLayout::withLibrary(m_fixture->homeUrl()), {});
    QTEST(states(), "states");
}

void TestSliceSelection::neverStoresLargeFilesAsOn()
{
    m_selection->record(SliceKind::LargeFiles).setIsOn(true);
    m_selection->record(SliceKind::Trash).setIsOn(false);
    m_selection->updateSelectedSlicesUserDefaults();
    QList<bool> expected = kDefaultSelection;
    expected[0] = false;
    QCOMPARE(m_fixture->defaults().booleans(VNTSelectedSlicesString), expected);
}

void TestSliceSelection::presetsTheTextOfLargeFiles()
{
    Info &largeFiles = m_selection->record(SliceKind::LargeFiles);
    QCOMPARE(largeFiles.fileSizeString().value_or(QString()), QStringLiteral("Click to select"));
    QVERIFY(!largeFiles.fileURLs());
}

void TestSliceSelection::togglesASlice()
{
    QCOMPARE(m_selection->toggle(indexOf(SliceKind::Downloads)), SliceSelection::Toggle::Switched);
    QVERIFY(m_selection->record(SliceKind::Downloads).isOn());
    m_selection->toggle(indexOf(SliceKind::Downloads));
    QVERIFY(!m_selection->record(SliceKind::Downloads).isOn());
}

void TestSliceSelection::keepsAnExcludedSliceOff()
{
    exclude({"Library/Caches"});
    QVERIFY(m_selection->record(SliceKind::Cache).isOn());
    for (int click = 0; click < 2; ++click) {
        QCOMPARE(m_selection->toggle(indexOf(SliceKind::Cache)), SliceSelection::Toggle::Excluded);
        QVERIFY(!m_selection->record(SliceKind::Cache).isOn());
    }
}

void TestSliceSelection::needsAllLocationsExcluded()
{
    exclude({"Library/iTunes/iPad Software Updates", "Library/iTunes/iPod Software Updates"});
    QCOMPARE(m_selection->toggle(indexOf(SliceKind::OldIos)), SliceSelection::Toggle::Switched);
    exclude({"Library/iTunes/iPad Software Updates", "Library/iTunes/iPod Software Updates",
             "Library/iTunes/iPhone Software Updates"});
    QCOMPARE(m_selection->toggle(indexOf(SliceKind::OldIos)), SliceSelection::Toggle::Excluded);
}

/// Browser Data: the file of a browser that runs, and another one's.
void TestSliceSelection::rebuildWithOneOfTwoInUse()
{
    m_fixture->makeFile("busy", 1);
    m_fixture->makeFile("idle", 1);
    const FileUrl busy = m_fixture->homeUrl().appending("busy", FileUrlKind::File);
    const FileUrl idle = m_fixture->homeUrl().appending("idle", FileUrlKind::File);
    HomeLayout::Findings findings;
    findings.locations[indexOf(SliceKind::BrowserData)] = {busy, idle};
    findings.programs = {
        {QStringLiteral("Browser"), {ProgramLock::Style::ProcessName, "browser"}, {busy}}};
    const auto layout = HomeLayout::freedesktop(m_fixture->homeUrl(), findings);
    const AccessScope scope(ResourceManager::access());
    MadeMachine machine;
    machine.programs = QByteArrayList{"browser"};
    m_selection->rebuild(layout, {},
                         ProgramsInUse::find(machine, ResourceManager::access(), layout));
    QCOMPARE(m_selection->record(SliceKind::BrowserData).fileURLs(), FileUrls{idle});
}

void TestSliceSelection::countsPlacesInUseAsPlacesOfTheSlice()
{
    rebuildWithOneOfTwoInUse();
    Info &browserData = m_selection->record(SliceKind::BrowserData);
    exclude({"idle"});
    QCOMPARE(m_selection->toggle(indexOf(SliceKind::BrowserData)),
             SliceSelection::Toggle::Switched);
    QVERIFY(browserData.isOn());
    m_selection->applyExclusions();
    QVERIFY(browserData.isOn());
    exclude({"idle", "busy"});
    m_selection->applyExclusions();
    QVERIFY(!browserData.isOn());
    QCOMPARE(m_selection->toggle(indexOf(SliceKind::BrowserData)),
             SliceSelection::Toggle::Excluded);
}

void TestSliceSelection::excludesNothingByParentOrPrefix()
{
    exclude({"Library", "Library/Cache", "Library/Caches/inside"});
    QVERIFY(!m_selection->containsExcludedFile(m_selection->record(SliceKind::Cache).fileURLs()));
    QVERIFY(!m_selection->containsExcludedFile(std::nullopt));
    QVERIFY(!m_selection->containsExcludedFile(FileUrls()));
}

void TestSliceSelection::switchesOffWhatBecomesExcluded()
{
    exclude({".Trash"});
    QVERIFY(!m_selection->applyExclusions());
    QList<bool> expected = kDefaultSelection;
    expected[0] = false;
    QCOMPARE(states(), expected);
}

void TestSliceSelection::doesNotSwitchOnWhatIsNoLongerExcluded()
{
    exclude({".Trash"});
    m_selection->applyExclusions();
    exclude({});
    m_selection->applyExclusions();
    QVERIFY(!m_selection->record(SliceKind::Trash).isOn());
}

void TestSliceSelection::dropsPickedLargeFilesWhenTheExclusionsChange()
{
    QVERIFY(!m_selection->applyExclusions());
    Info &largeFiles = m_selection->record(SliceKind::LargeFiles);
    largeFiles.setFileURLs({m_fixture->homeUrl().appending("Movies/film.mov", FileUrlKind::File)});
    largeFiles.setFileSizeString(QStringLiteral("1 GB"));
    largeFiles.setIsOn(true);
    QVERIFY(m_selection->applyExclusions());
    QVERIFY(largeFiles.fileURLs()->isEmpty());
    QVERIFY(!largeFiles.isOn());
    QCOMPARE(largeFiles.fileSizeString().value_or(QString()), QStringLiteral("1 GB"));
    QVERIFY(!m_selection->applyExclusions());
}

void TestSliceSelection::addsUpWhatIsOn()
{
    m_selection->record(SliceKind::Trash).setFileSize(10);
    m_selection->record(SliceKind::Cache).setFileSize(200);
    m_selection->record(SliceKind::Downloads).setFileSize(5000);
    QCOMPARE(m_selection->totalSize(), 210);
    QVERIFY(m_selection->somethingIsSelected());
    for (const auto &record : m_selection->records())
        record->setIsOn(false);
    QCOMPARE(m_selection->totalSize(), 0);
    QVERIFY(!m_selection->somethingIsSelected());
}

void TestSliceSelection::balancesItsAccess()
{
    exclude({".Trash"});
    m_selection->containsExcludedFile(std::nullopt);
    m_selection->containsExcludedFile(m_selection->record(SliceKind::Trash).fileURLs());
    m_selection->containsExcludedFile(m_selection->record(SliceKind::Cache).fileURLs());
    m_selection->applyExclusions();
    QCOMPARE(ResourceManager::accessCount(), 0);
}

void TestSliceSelection::comparesWithinTheAccess()
{
    CountingAccess access;
    const SliceSelection selection(m_fixture->defaults(), access);
    for (const auto &record : m_selection->records())
        selection.containsExcludedFile(record->fileURLs());
    QCOMPARE(access.started, 8);
    QCOMPARE(access.stopped, 8);
}

VANTOR_GUI_TEST_MAIN(TestSliceSelection)
#include "tst_SliceSelection.moc"
