#include "app/grant/ResourceManager.h"
#include "app/settings/SettingsKeys.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/base/ByteCount.h"
#include "prefs/exclusions/PreferencesWindowController.h"
#include "prefs/window/ColorWindow.h"
#include "tests/journeys/JourneyFixture.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <numeric>

/// Large files at the real window, with mouse and keyboard, on a made home folder: found, picked,
/// given up, cleaned.
class TestLargeFilesJourney final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void forgetsThreePicksOnCancel();
    void cleansTwoPicksAndNothingElse();
    void needsNoMouse();
    void emptiesTheSliceWhenTheExclusionsChange();

private:
    void openSheet();
    void pickAndAdd(const QList<int> &rows);
    void exclude(const QByteArray &relativePath);
    QList<QByteArray> listed() const;
    qint64 bytesOf(const QList<int> &rows) const;
    Info &slice() const { return page().selection().record(SliceKind::LargeFiles); }
    QString sliceText() const { return slice().fileSizeString().value_or(QString()); }
    FreeSpaceViewController &page() const { return m_fixture->slicesPage(); }
    LargeFilesWindowController &sheet() const { return journey().largeFiles(); }

    Journey &journey() const { return m_fixture->journey(); }
    const SampleHome &home() const { return m_fixture->home(); }

    std::unique_ptr<JourneyFixture> m_fixture;
};

void TestLargeFilesJourney::initTestCase_data()
{
    addKindsOfHomes();
}

void TestLargeFilesJourney::init()
{
    QFETCH_GLOBAL(const HomeKind, kind);
    m_fixture = std::make_unique<JourneyFixture>(kind);
    m_fixture->start();
    QVERIFY(m_fixture->reachSlices());
}

void TestLargeFilesJourney::cleanup()
{
    m_fixture->quit();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

void TestLargeFilesJourney::openSheet()
{
    QVERIFY(journey().openLargeFiles());
    QVERIFY(journey().waitForSearch());
}

void TestLargeFilesJourney::pickAndAdd(const QList<int> &rows)
{
    openSheet();
    for (const int row : rows)
        QVERIFY(journey().clickSizeButton(row));
    QVERIFY(journey().pressInLargeFiles(*sheet().addButton()));
}

/// Excludes the path in the same way as the preferences do.
void TestLargeFilesJourney::exclude(const QByteArray &relativePath)
{
    const FileUrl url = home().url(relativePath, FileUrlKind::File);
    m_fixture->application().defaults().setStrings(VNTExcludedPathsString,
                                                   {QString::fromLatin1(url.absoluteString())});
    PreferencesWindowController &preferences =
        m_fixture->application().preferencesWindowController();
    preferences.window();
    preferences.saveURLs();
}

QList<QByteArray> TestLargeFilesJourney::listed() const
{
    QList<QByteArray> paths;
    for (const FileUrl &file : sheet().array().fileURLs())
        paths.append(file.path().mid(home().path().size() + 1));
    return paths;
}

/// The bytes by the made home's own list.
qint64 TestLargeFilesJourney::bytesOf(const QList<int> &rows) const
{
    const QList<QByteArray> files = home().largeFiles();
    return std::accumulate(rows.begin(), rows.end(), qint64{0},
                           [&](qint64 sum, int row) { return sum + home().sizeOf(files[row]); });
}

void TestLargeFilesJourney::forgetsThreePicksOnCancel()
{
    openSheet();
    QCOMPARE(listed(), home().largeFiles());
    for (const int row : {0, 1, 3})
        QVERIFY(journey().clickSizeButton(row));
    QTRY_COMPARE(sheet().addButton()->attributedTitle().string(),
                 QStringLiteral("Add ") + stringFromByteCount(bytesOf({0, 1, 3})));
    QVERIFY(journey().pressInLargeFiles(*sheet().cancelButton()));
    QTRY_COMPARE(ResourceManager::accessCount(), 0);
    QVERIFY(!slice().isOn());
    QCOMPARE(sliceText(), QStringLiteral("Click to select"));
    QCOMPARE(slice().fileSize(), 0);
    QCOMPARE(home().presentPaths(), home().paths());
    openSheet();
    QCOMPARE(listed(), home().largeFiles());
    QVERIFY(sheet().selectedURLs().isEmpty());
    QCOMPARE(sheet().addButton()->attributedTitle().string(), QStringLiteral("Add Zero KB"));
}

void TestLargeFilesJourney::cleansTwoPicksAndNothingElse()
{
    for (const SliceKind kind :
         {SliceKind::Trash, SliceKind::Cache, SliceKind::AppLogs, SliceKind::OldIos})
        QVERIFY(journey().clickSlice(kind));
    pickAndAdd({1, 3});
    const qint64 bytes = bytesOf({1, 3});
    QTRY_VERIFY(slice().isOn());
    QCOMPARE(sliceText(), stringFromByteCount(bytes));
    QCOMPARE(page().selection().totalSize(), bytes);
    QVERIFY(!m_fixture->application().defaults().booleans(VNTSelectedSlicesString).contains(true));

    QVERIFY(journey().pressClean(QStringLiteral("Delete Files")));
    FinalViewController &result = journey().controller().finalPage();
    QVERIFY(journey().waitForPage(result));
    QCOMPARE(result.data().toLongLong(), bytes);
    QList<QByteArray> kept = home().paths();
    for (const int row : {1, 3})
        kept.removeOne(home().largeFiles()[row]);
    QCOMPARE(home().presentPaths(), kept);
    QCOMPARE(sheet().array().rowCount(), 0);

    QVERIFY(journey().scanAgain());
    QVERIFY(journey().waitForPage(page()) && journey().waitForMeasures());
    QVERIFY(!slice().isOn());
    QCOMPARE(sliceText(), QStringLiteral("Click to select"));
    openSheet();
    QCOMPARE(listed().size(), home().largeFiles().size() - 2);
}

void TestLargeFilesJourney::needsNoMouse()
{
    openSheet();
    journey().press(Qt::Key_Down);
    journey().press(Qt::Key_Down);
    journey().press(Qt::Key_Return);
    QCOMPARE(sheet().selectedURLs().size(), 1);
    QCOMPARE(sheet().selectedURLs().constFirst(), sheet().array().fileAt(1).fileURL());
    journey().press(Qt::Key_Tab);
    QCOMPARE(journey().window().focusWidget(), sheet().cancelButton());
    journey().press(Qt::Key_Tab);
    QCOMPARE(journey().window().focusWidget(), sheet().addButton());
    journey().press(Qt::Key_Space);
    QTRY_VERIFY(!hasSheet(journey().window()));
    QTRY_VERIFY(slice().isOn());
    QCOMPARE(slice().fileSize(), bytesOf({1}));
    openSheet();
    journey().press(Qt::Key_Escape);
    QTRY_VERIFY(!hasSheet(journey().window()));
    QTRY_VERIFY(!slice().isOn());
}

void TestLargeFilesJourney::emptiesTheSliceWhenTheExclusionsChange()
{
    const QString message =
        QStringLiteral("Your preferences have been adjusted, please scan for large files again");
    pickAndAdd({0});
    QTRY_VERIFY(slice().isOn());
    const QString text = sliceText();
    exclude(home().largeFiles().constFirst());
    QVERIFY(!slice().isOn());
    QCOMPARE(slice().fileURLs().value_or(FileUrls()), FileUrls());
    QCOMPARE(sliceText(), text);
    QCOMPARE(sheet().array().rowCount(), 0);
    QVERIFY(sheetText(journey().window()).contains(message));
    QVERIFY(pressSheetButton(journey().window(), QStringLiteral("OK")));
    exclude(home().largeFiles().constFirst()); // nothing is picked any more
    QVERIFY(!hasSheet(journey().window()));
    openSheet();
    QCOMPARE(listed(), home().largeFiles().mid(1));
}

VANTOR_GUI_TEST_MAIN(TestLargeFilesJourney)
#include "tst_LargeFilesJourney.moc"
