#include "app/DiskInfoViewController.h"
#include "app/ResourceManager.h"
#include "app/SettingsKeys.h"
#include "largefiles/LargeFilesWindowController.h"
#include "largefiles/TextButton.h"
#include "platform/ByteCount.h"
#include "prefs/ColorWindow.h"
#include "prefs/PreferencesWindowController.h"
#include "tests/support/GuiTestMain.h"
#include "tests/support/Journey.h"
#include "tests/support/ResourceManagerReset.h"
#include "tests/support/SampleHome.h"
#include "tests/support/SheetDriver.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QThreadPool>
#include <numeric>

/// Large files at the real window, with mouse and keyboard, on a made home folder: found, picked,
/// given up, cleaned.
class TestLargeFilesJourney final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
    FreeSpaceViewController &page() const { return m_journey->controller().freeSpacePage(); }
    LargeFilesWindowController &sheet() const { return m_journey->largeFiles(); }

    std::unique_ptr<ScratchFolder> m_place;
    std::unique_ptr<SampleHome> m_home;
    std::unique_ptr<AppDelegate> m_application;
    std::unique_ptr<Journey> m_journey;
};

void TestLargeFilesJourney::init()
{
    m_place = std::make_unique<ScratchFolder>();
    m_home = std::make_unique<SampleHome>(*m_place);
    ResourceManagerReset::beginRun();
    AppDelegate::Configuration configuration;
    configuration.settingsFolder = QFile::decodeName(m_place->path("settings"));
    configuration.realHomeDirectory = [this] { return m_home->path(); };
    configuration.pingHelper.program.clear();
    m_application = std::make_unique<AppDelegate>(std::move(configuration));
    m_application->applicationDidFinishLaunching();
    m_application->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_journey = std::make_unique<Journey>(*m_application);
    MainWindowController &controller = m_journey->controller();
    QVERIFY(m_journey->waitForPage(controller.folderSelectPage()));
    QVERIFY(m_journey->chooseHome(m_home->path()));
    QVERIFY(m_journey->waitForPage(controller.diskInfoPage()) && m_journey->pressStart());
    QVERIFY(m_journey->waitForPage(page()) && m_journey->waitForMeasures());
}

void TestLargeFilesJourney::cleanup()
{
    m_journey.reset();
    m_application.reset();
    QVERIFY(QThreadPool::globalInstance()->waitForDone());
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_home.reset();
    m_place.reset();
}

void TestLargeFilesJourney::openSheet()
{
    QVERIFY(m_journey->openLargeFiles());
    QVERIFY(m_journey->waitForSearch());
}

void TestLargeFilesJourney::pickAndAdd(const QList<int> &rows)
{
    openSheet();
    for (const int row : rows)
        QVERIFY(m_journey->clickSizeButton(row));
    QVERIFY(m_journey->pressInLargeFiles(*sheet().addButton()));
}

/// As the preferences do it.
void TestLargeFilesJourney::exclude(const QByteArray &relativePath)
{
    const FileUrl url = m_home->url(relativePath, FileUrlKind::File);
    m_application->defaults().setStrings(VNTExcludedPathsString,
                                         {QString::fromLatin1(url.absoluteString())});
    PreferencesWindowController &preferences = m_application->preferencesWindowController();
    preferences.window();
    preferences.saveURLs();
}

QList<QByteArray> TestLargeFilesJourney::listed() const
{
    QList<QByteArray> paths;
    for (const FileUrl &file : sheet().array().fileURLs())
        paths.append(file.path().mid(m_home->path().size() + 1));
    return paths;
}

/// By the made home's own list.
qint64 TestLargeFilesJourney::bytesOf(const QList<int> &rows) const
{
    const QList<QByteArray> files = m_home->largeFiles();
    return std::accumulate(rows.begin(), rows.end(), qint64{0},
                           [&](qint64 sum, int row) { return sum + m_home->sizeOf(files[row]); });
}

void TestLargeFilesJourney::forgetsThreePicksOnCancel()
{
    openSheet();
    QCOMPARE(listed(), m_home->largeFiles());
    for (const int row : {0, 1, 3})
        QVERIFY(m_journey->clickSizeButton(row));
    QTRY_COMPARE(sheet().addButton()->attributedTitle().string(),
                 QStringLiteral("Add ") + stringFromByteCount(bytesOf({0, 1, 3})));
    QVERIFY(m_journey->pressInLargeFiles(*sheet().cancelButton()));
    QTRY_COMPARE(ResourceManager::accessCount(), 0);
    QVERIFY(!slice().isOn());
    QCOMPARE(sliceText(), QStringLiteral("Click to select"));
    QCOMPARE(slice().fileSize(), 0);
    QCOMPARE(m_home->presentPaths(), m_home->paths());
    openSheet();
    QCOMPARE(listed(), m_home->largeFiles());
    QVERIFY(sheet().selectedURLs().isEmpty());
    QCOMPARE(sheet().addButton()->attributedTitle().string(), QStringLiteral("Add Zero KB"));
}

void TestLargeFilesJourney::cleansTwoPicksAndNothingElse()
{
    for (const SliceKind kind :
         {SliceKind::Trash, SliceKind::Cache, SliceKind::AppLogs, SliceKind::OldIos})
        QVERIFY(m_journey->clickSlice(kind));
    pickAndAdd({1, 3});
    const qint64 bytes = bytesOf({1, 3});
    QTRY_VERIFY(slice().isOn());
    QCOMPARE(sliceText(), stringFromByteCount(bytes));
    QCOMPARE(page().selection().totalSize(), bytes);
    QVERIFY(!m_application->defaults().booleans(VNTSelectedSlicesString).contains(true));

    QVERIFY(m_journey->pressClean(QStringLiteral("Delete Files")));
    FinalViewController &result = m_journey->controller().finalPage();
    QVERIFY(m_journey->waitForPage(result));
    QCOMPARE(result.data().toLongLong(), bytes);
    QList<QByteArray> kept = m_home->paths();
    for (const int row : {1, 3})
        kept.removeOne(m_home->largeFiles()[row]);
    QCOMPARE(m_home->presentPaths(), kept);
    QCOMPARE(sheet().array().rowCount(), 0);

    QVERIFY(m_journey->scanAgain());
    QVERIFY(m_journey->waitForPage(page()) && m_journey->waitForMeasures());
    QVERIFY(!slice().isOn());
    QCOMPARE(sliceText(), QStringLiteral("Click to select"));
    openSheet();
    QCOMPARE(listed().size(), m_home->largeFiles().size() - 2);
}

void TestLargeFilesJourney::needsNoMouse()
{
    openSheet();
    m_journey->press(Qt::Key_Down);
    m_journey->press(Qt::Key_Down);
    m_journey->press(Qt::Key_Return);
    QCOMPARE(sheet().selectedURLs().size(), 1);
    QCOMPARE(sheet().selectedURLs().constFirst(), sheet().array().fileAt(1).fileURL());
    m_journey->press(Qt::Key_Tab);
    QCOMPARE(m_journey->window().focusWidget(), sheet().cancelButton());
    m_journey->press(Qt::Key_Tab);
    QCOMPARE(m_journey->window().focusWidget(), sheet().addButton());
    m_journey->press(Qt::Key_Space);
    QTRY_VERIFY(!hasSheet(m_journey->window()));
    QTRY_VERIFY(slice().isOn());
    QCOMPARE(slice().fileSize(), bytesOf({1}));
    openSheet();
    m_journey->press(Qt::Key_Escape);
    QTRY_VERIFY(!hasSheet(m_journey->window()));
    QTRY_VERIFY(!slice().isOn());
}

void TestLargeFilesJourney::emptiesTheSliceWhenTheExclusionsChange()
{
    const QString message =
        QStringLiteral("Your preferences have been adjusted, please scan for large files again");
    pickAndAdd({0});
    QTRY_VERIFY(slice().isOn());
    const QString text = sliceText();
    exclude(m_home->largeFiles().constFirst());
    QVERIFY(!slice().isOn());
    QCOMPARE(slice().fileURLs().value_or(FileUrls()), FileUrls());
    QCOMPARE(sliceText(), text);
    QCOMPARE(sheet().array().rowCount(), 0);
    QVERIFY(sheetText(m_journey->window()).contains(message));
    QVERIFY(pressSheetButton(m_journey->window(), QStringLiteral("OK")));
    exclude(m_home->largeFiles().constFirst()); // nothing is picked any more
    QVERIFY(!hasSheet(m_journey->window()));
    openSheet();
    QCOMPARE(listed(), m_home->largeFiles().mid(1));
}

VANTOR_GUI_TEST_MAIN(TestLargeFilesJourney)
#include "tst_LargeFilesJourney.moc"
