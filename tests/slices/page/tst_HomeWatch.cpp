#include "slices/page/HomeWatch.h"

#include "app/grant/ResourceManager.h"
#include "app/settings/SettingsKeys.h"
#include "platform/threads/BackgroundThreads.h"
#include "tests/support/calls/SlowDisk.h"
#include "tests/support/page/FirefoxProfiles.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/GuiTestMain.h"

#include <QSignalSpy>
#include <unistd.h>

/// What the watch finds in a made home, and what it makes of the records. No page is there.
class TestHomeWatch final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(HomeKind::Freedesktop); }
    void cleanup();

    void placesTheRecordsAtOnceInAHomeWithALibrary();
    void findsThePlacesOfAnyOtherHomeBesideTheMainThread();
    void makesNewRecordsAtEveryLook();
    void switchesOffWhatWasExcludedWhileItLooked();
    void answersNothingOnceItIsStopped();
    void takesOverWhichProgramsRun();
    void tellsNothingWhileTheSameProgramsRun();
    void changesNoRecordThatIsBeingCleaned();
    void measuresBesideTheMainThreadAndTellsOfEachSize();
    void measuresNothingAnyMoreOnceItIsTold();
    void measuresNothingAnyMoreWhenTheProgramEnds();
    void goesOnOnceTheRecordsAreMeasured();

private:
    void begin(HomeKind kind);
    void look();
    bool lookForPrograms();
    void firefoxStarts();
    Info &record(SliceKind kind) { return m_selection->record(kind); }

    SlowDisk m_disk;
    bool m_mayChange = true;
    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<SliceSelection> m_selection;
    std::unique_ptr<HomeWatch> m_watch;
};

void TestHomeWatch::begin(HomeKind kind)
{
    m_watch.reset();
    m_selection.reset();
    m_fixture.reset();
    m_mayChange = true;
    m_fixture = std::make_unique<PageFixture>(kind);
    m_fixture->grantHome();
    QVERIFY(ResourceManager::homeFolder() == m_fixture->homeUrl());
    m_fixture->makeFile(".cache/a", 2000);
    m_fixture->makeFile(".mozilla/firefox/x.default/cookies.sqlite", 500);
    listFirefoxProfiles(m_fixture->home() + "/.mozilla/firefox", {"x.default"});
    m_selection =
        std::make_unique<SliceSelection>(m_fixture->defaults(), ResourceManager::access());
    m_watch = std::make_unique<HomeWatch>(
        HomeWatch::Services{m_disk.calls(), ResourceManager::access(), &ResourceManager::homeFolder,
                            [this] { return m_mayChange; }},
        *m_selection);
}

void TestHomeWatch::cleanup()
{
    m_disk.answer();
    m_watch.reset();
    awaitBackgroundThreads();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_selection.reset();
    m_fixture.reset();
}

void TestHomeWatch::look()
{
    QSignalSpy found(m_watch.get(), &HomeWatch::found);
    m_watch->look();
    QVERIFY(found.wait());
}

/// Whether it has gone on after the look.
bool TestHomeWatch::lookForPrograms()
{
    bool goesOn = false;
    m_watch->lookForPrograms([&goesOn] { goesOn = true; });
    return QTest::qWaitFor([&goesOn] { return goesOn; });
}

/// As far as its traces tell, Firefox is this very process.
void TestHomeWatch::firefoxStarts()
{
    m_fixture->folder().makeLink("anna/.mozilla/firefox/x.default/lock",
                                 "127.0.1.1:+" + QByteArray::number(::getpid()));
}

void TestHomeWatch::placesTheRecordsAtOnceInAHomeWithALibrary()
{
    begin(HomeKind::Library);
    QSignalSpy found(m_watch.get(), &HomeWatch::found);
    m_watch->look();
    QCOMPARE(m_watch->layout().kind(), HomeKind::Library);
    QVERIFY(record(SliceKind::Trash).fileURLs().has_value());
    QCOMPARE(found.size(), 0); // nothing is left to be found
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

void TestHomeWatch::findsThePlacesOfAnyOtherHomeBesideTheMainThread()
{
    QSignalSpy found(m_watch.get(), &HomeWatch::found);
    m_watch->look();
    QVERIFY(!m_watch->isKnown());
    QVERIFY(!record(SliceKind::Cache).fileURLs());
    QVERIFY(found.wait());
    QCOMPARE(m_watch->layout().kind(), HomeKind::Freedesktop);
    QVERIFY(record(SliceKind::Cache).fileURLs().has_value());
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

void TestHomeWatch::makesNewRecordsAtEveryLook()
{
    look();
    const std::shared_ptr<Info> before = m_selection->records().at(indexOf(SliceKind::Cache));
    look();
    QVERIFY(m_selection->records().at(indexOf(SliceKind::Cache)) != before);
}

void TestHomeWatch::switchesOffWhatWasExcludedWhileItLooked()
{
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString, QList<bool>(8, true));
    QSignalSpy found(m_watch.get(), &HomeWatch::found);
    m_watch->look();
    const FileUrl cache = m_fixture->homeUrl().appending(".cache", FileUrlKind::Folder);
    m_fixture->defaults().setStrings(VNTExcludedPathsString,
                                     {QString::fromLatin1(cache.absoluteString())});
    QVERIFY(found.wait());
    QVERIFY(!record(SliceKind::Cache).isOn());
    QVERIFY(record(SliceKind::BrowserData).isOn());
    QCOMPARE(m_fixture->defaults().booleans(VNTSelectedSlicesString).at(2), false);
}

void TestHomeWatch::answersNothingOnceItIsStopped()
{
    QSignalSpy found(m_watch.get(), &HomeWatch::found);
    m_disk.hang();
    m_watch->look();
    QTRY_VERIFY(m_disk.waiting() > 0);
    m_watch->stop();
    m_disk.answer();
    awaitBackgroundThreads();
    QCoreApplication::processEvents();
    QCOMPARE(found.size(), 0);
    QVERIFY(!m_watch->isKnown());
}

void TestHomeWatch::takesOverWhichProgramsRun()
{
    look();
    QCOMPARE(record(SliceKind::BrowserData).fileURLs()->size(), 1);
    QSignalSpy changed(m_watch.get(), &HomeWatch::programsChanged);
    firefoxStarts();
    QVERIFY(lookForPrograms());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(m_watch->programsInUse(SliceKind::BrowserData),
             QStringList{QStringLiteral("Firefox")});
    QCOMPARE(m_watch->programsInUse(SliceKind::Trash), QStringList());
    QVERIFY(record(SliceKind::BrowserData).fileURLs()->isEmpty());
}

void TestHomeWatch::tellsNothingWhileTheSameProgramsRun()
{
    firefoxStarts();
    look();
    QSignalSpy changed(m_watch.get(), &HomeWatch::programsChanged);
    QVERIFY(lookForPrograms());
    QCOMPARE(changed.size(), 0);
}

void TestHomeWatch::changesNoRecordThatIsBeingCleaned()
{
    look();
    QSignalSpy changed(m_watch.get(), &HomeWatch::programsChanged);
    firefoxStarts();
    m_mayChange = false;
    QVERIFY(lookForPrograms());
    QCOMPARE(changed.size(), 0);
    QCOMPARE(m_watch->programsInUse(SliceKind::BrowserData), QStringList());
    QCOMPARE(record(SliceKind::BrowserData).fileURLs()->size(), 1);
}

void TestHomeWatch::measuresBesideTheMainThreadAndTellsOfEachSize()
{
    look();
    QSignalSpy changed(m_watch.get(), &HomeWatch::sizeChanged);
    m_disk.takeAskedHere();
    m_watch->measure({m_selection->records().at(indexOf(SliceKind::Cache))}, [] {});
    QVERIFY(changed.wait());
    QCOMPARE(record(SliceKind::Cache).fileSize(), 2000);
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

void TestHomeWatch::measuresNothingAnyMoreOnceItIsTold()
{
    look();
    m_watch->stopMeasuring();
    QVERIFY(!record(SliceKind::Cache).fileSizeString());
    QCOMPARE(record(SliceKind::Cache).fileSize(), 0);
    look();
    QVERIFY(record(SliceKind::Cache).fileSizeString().has_value());
    QCOMPARE(record(SliceKind::Cache).fileSize(), 2000);
}

/// From outside: then nobody destroys the watch. In a process of its own, because that is for good.
void TestHomeWatch::measuresNothingAnyMoreWhenTheProgramEnds()
{
    look();
    enum { NotMeasured, Measured };
    const auto measured = [this] {
        return record(SliceKind::Cache).fileSizeString() ? Measured : NotMeasured;
    };
    QCOMPARE(runInChild(ChildUser::Same, measured).exitCode, int(Measured));
    const ChildOutcome ending = runInChild(ChildUser::Same, [&] {
        stopBackgroundThreads();
        return int(measured());
    });
    QCOMPARE(ending.exitCode, int(NotMeasured));
}

void TestHomeWatch::goesOnOnceTheRecordsAreMeasured()
{
    look();
    const SliceSelection::Records cache{m_selection->records().at(indexOf(SliceKind::Cache))};
    bool goesOn = false;
    m_disk.hang();
    m_watch->measure(cache, [&] { goesOn = cache[0]->isMeasured(); });
    QTRY_VERIFY(m_disk.waiting() > 0);
    QVERIFY(!goesOn);
    m_disk.answer();
    QTRY_VERIFY(goesOn);
}

VANTOR_GUI_TEST_MAIN(TestHomeWatch)
#include "tst_HomeWatch.moc"
