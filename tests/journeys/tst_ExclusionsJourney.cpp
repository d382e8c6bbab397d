#include "app/grant/ResourceManager.h"
#include "app/settings/SettingsKeys.h"
#include "prefs/exclusions/ExcludedFilesModel.h"
#include "prefs/window/ColorWindow.h"
#include "tests/journeys/JourneyFixture.h"
#include "tests/journeys/PreferencesJourney.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QFile>
#include <algorithm>

namespace {

const QList<SliceKind> kCleaned{SliceKind::Trash, SliceKind::Cache, SliceKind::AppLogs,
                                SliceKind::OldIos, SliceKind::Downloads};

QList<QByteArray> sorted(QList<QByteArray> paths)
{
    std::ranges::sort(paths);
    return paths;
}

} // namespace

/// A user says in the preferences what must stay, and the whole program keeps to it.
class TestExclusionsJourney final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanup();

    void cleansAroundAFolderInsideASlice();
    void keepsASliceOffWhoseFolderIsExcluded();
    void keepsWhatIsDroppedAndForgetsWhatIsRemoved();
    void remembersTheExclusions();

private:
    bool clean();

    std::unique_ptr<JourneyFixture> m_fixture;
    std::unique_ptr<PreferencesJourney> m_preferences;
};

void TestExclusionsJourney::initTestCase_data()
{
    addKindsOfHomes();
}

void TestExclusionsJourney::initTestCase()
{
    QApplication::setStyle(new StillStyle);
}

void TestExclusionsJourney::init()
{
    QFETCH_GLOBAL(const HomeKind, kind);
    m_fixture = std::make_unique<JourneyFixture>(kind);
    m_fixture->start();
    QVERIFY(m_fixture->reachSlices());
    m_preferences =
        std::make_unique<PreferencesJourney>(m_fixture->application(), m_fixture->journey());
}

void TestExclusionsJourney::cleanup()
{
    m_preferences.reset();
    m_fixture->quit();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

/// Cleans what is on by default, and Downloads.
bool TestExclusionsJourney::clean()
{
    Journey &journey = m_fixture->journey();
    return journey.clickSlice(SliceKind::Downloads) &&
           journey.pressClean(QStringLiteral("Delete Files")) &&
           journey.waitForPage(journey.controller().finalPage());
}

void TestExclusionsJourney::cleansAroundAFolderInsideASlice()
{
    QVERIFY(m_preferences->open());
    QVERIFY(m_preferences->add(m_fixture->home().path(SampleHome::kKeep)));
    QVERIFY(m_preferences->waitForSizes());
    QCOMPARE(m_preferences->texts(ExcludedFilesModel::PathColumn),
             QStringList{QStringLiteral("Keep")});
    QCOMPARE(m_preferences->texts(ExcludedFilesModel::SizeColumn),
             QStringList{QStringLiteral("7 MB")});
    QVERIFY(m_preferences->close());
    QVERIFY(clean());
    QCOMPARE(m_fixture->home().presentPaths(),
             sorted(m_fixture->keptAfter(kCleaned) + m_fixture->pathsAt({SampleHome::kKeep})));
}

void TestExclusionsJourney::keepsASliceOffWhoseFolderIsExcluded()
{
    Journey &journey = m_fixture->journey();
    SliceSelection &selection = m_fixture->slicesPage().selection();
    QVERIFY(journey.clickSlice(SliceKind::Downloads));
    QVERIFY(m_preferences->open());
    QVERIFY(m_preferences->add(m_fixture->home().path("Downloads")));
    QVERIFY(!selection.record(SliceKind::Downloads).isOn()); // at once
    QVERIFY(m_preferences->close());

    journey.tapSlice(SliceKind::Downloads);
    QTRY_COMPARE(sheetText(journey.window()).trimmed(),
                 QStringLiteral("To enable this slice, please remove it's excluded folder from "
                                "preferences."));
    QVERIFY(pressSheetButton(journey.window(), QStringLiteral("OK")));
    QVERIFY(!selection.record(SliceKind::Downloads).isOn());

    QVERIFY(m_preferences->open());
    m_preferences->select({0});
    QVERIFY(m_preferences->pressRemove());
    QVERIFY(m_preferences->waitForRows(0));
    QVERIFY(!selection.record(SliceKind::Downloads).isOn()); // that is the user's to say
    QVERIFY(m_preferences->close());
    QVERIFY(clean());
    QCOMPARE(m_fixture->home().presentPaths(), m_fixture->keptAfter(kCleaned));
}

void TestExclusionsJourney::keepsWhatIsDroppedAndForgetsWhatIsRemoved()
{
    const SampleHome &home = m_fixture->home();
    const QByteArray oddName =
        home.locationsOf(indexOf(SliceKind::Cache)).constFirst() + "/no text \xff\xfe";
    QVERIFY(m_preferences->open());
    QVERIFY(!m_preferences->drop({"/etc/fstab"}));
    QVERIFY(m_preferences->drop({home.path("Downloads/unpacked"), home.path("Downloads/Keep"),
                                 home.path(oddName), home.path("Downloads/Invoice April.pdf")}));
    QVERIFY(m_preferences->waitForRows(4));
    m_preferences->select({0, 3});
    m_preferences->pressKey(Qt::Key_Delete);
    QVERIFY(m_preferences->waitForRows(2));
    QVERIFY(m_preferences->close());
    QVERIFY(clean());
    QCOMPARE(home.presentPaths(), sorted(m_fixture->keptAfter(kCleaned) +
                                         m_fixture->pathsAt({"Downloads/Keep", oddName})));
}

void TestExclusionsJourney::remembersTheExclusions()
{
    QVERIFY(m_preferences->open());
    QVERIFY(m_preferences->add(m_fixture->home().path("Downloads/Invoice April.pdf")));
    m_preferences.reset();
    m_fixture->start();
    QVERIFY(
        QFile::remove(QFile::decodeName(m_fixture->home().path("Downloads/Invoice April.pdf"))));
    m_preferences =
        std::make_unique<PreferencesJourney>(m_fixture->application(), m_fixture->journey());
    QVERIFY(m_preferences->open());
    QCOMPARE(m_preferences->texts(ExcludedFilesModel::PathColumn),
             QStringList{QStringLiteral("Invoice April.pdf")});
    QTRY_COMPARE(m_preferences->texts(ExcludedFilesModel::SizeColumn),
                 QStringList{QStringLiteral("Not found")});
}

VANTOR_GUI_TEST_MAIN(TestExclusionsJourney)
#include "tst_ExclusionsJourney.moc"
