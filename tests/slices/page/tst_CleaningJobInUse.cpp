#include "app/grant/ResourceManager.h"
#include "platform/system/SystemResult.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "slices/home/HomeSurvey.h"
#include "slices/page/CleaningJob.h"
#include "slices/record/Info.h"
#include "slices/sizing/FolderSizing.h"
#include "tests/slices/kit/Consent.h"
#include "tests/support/calls/MadeMachine.h"
#include "tests/support/page/FirefoxProfiles.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/OtherProcess.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

/// What a cleaning does about programs that begin to use what it was asked to remove.
class TestCleaningJobInUse final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void keepsWhatAProgramStartedMeanwhileUses();
    void keepsTheCacheOfAProgramThatRuns();
    void keepsTheCacheOfAProgramStartedMeanwhile();
    void keepsTheCacheOfAProgramStartedWhileAllElseAroundItGoes();
    void keepsWhatIsNoCache();
    void countsNothingAsFreedThatStayed();
    void takesOffNoMoreThanWasMeasured();
    void tellsNothingOfWhatIsNotThere();
    void takesNoSizeOffTwice();
    void logsWhatStaysForAProgram();
    void keepsWhatAnyProgramHoldsOpen();
    void keepsWhatAnyProgramHasBegunToUse();
    void takesAFolderInUseOffOnlyOnce();
    void keepsACacheThatCannotBeLookedAt();

private:
    void firefoxStarts() const
    {
        m_fixture->folder().makeLink("anna/.mozilla/firefox/a/lock",
                                     "127.0.1.1:+" + QByteArray::number(::getpid()));
    }
    HomeLayout layout() const
    {
        const AccessScope scope(ResourceManager::access());
        return surveyHome(m_machine, ResourceManager::access(), m_fixture->homeUrl(), {});
    }
    CleaningReport clean(const QList<SliceKind> &kinds);
    void startFirefoxAtTheFirst(std::string_view call);

    CleaningJob::Records m_chosen; ///< of the last cleaning
    std::unique_ptr<PageFixture> m_fixture;
    /// Changed only by the thread that cleans, during the cleaning.
    MadeMachine m_machine;
};

void TestCleaningJobInUse::init()
{
    m_machine.setHook({});
    m_machine.processes = {::getpid()};
    m_machine.programs = QByteArrayList();
    m_machine.usedFiles = QByteArrayList{};
    m_machine.hasFilesOfTheHost = false;
    m_fixture = std::make_unique<PageFixture>(HomeKind::Freedesktop);
    m_fixture->grantHome();
    QVERIFY(ResourceManager::homeFolder() == m_fixture->homeUrl());
    m_fixture->makeFile(".local/share/Trash/files/t", 5);
    m_fixture->makeFile(".cache/other/c", 5);
    m_fixture->makeFile(".cache/mozilla/firefox/a/c", 7);
    m_fixture->makeFile(".cache/mozilla/firefox/.hidden", 100);
    m_fixture->makeFile(".config/chromium/Default/History", 5);
    m_fixture->makeFile(".mozilla/firefox/a/cookies.sqlite", 5);
    m_fixture->makeFile(".mozilla/firefox/a/formhistory.sqlite", 5);
    listFirefoxProfiles(m_fixture->home() + "/.mozilla/firefox", {"a"});
}

void TestCleaningJobInUse::cleanup()
{
    m_fixture.reset();
}

CleaningReport TestCleaningJobInUse::clean(const QList<SliceKind> &kinds)
{
    const HomeLayout layout = this->layout();
    const auto measure = [this](const FileUrl &url, const FileUrls &kept) {
        return sizeForFolderAtPath(m_machine, ResourceManager::access(), url, {},
                                   {.kept = pathsInside(url, kept)});
    };
    m_chosen.clear();
    for (const SliceKind kind : kinds)
        m_chosen.push_back(
            Info::infoWithName(QString::fromUtf16(sliceCatalogue()[indexOf(kind)].name),
                               layout.locations(kind), {measure, nullptr}));
    CleaningJob job(m_machine, ResourceManager::access(), m_fixture->defaults().folder());
    CleaningReport report;
    QSignalSpy finished(&job, &CleaningJob::finished);
    connect(&job, &CleaningJob::finished, this, [&](const CleaningReport &done) { report = done; });
    job.start(
        m_chosen, [](const CleaningJob::UseExclusions &use) { use(ExcludedPaths()); },
        consentTo(ResourceManager::access(), m_chosen), layout);
    if (!finished.wait())
        qFatal("the cleaning did not end");
    return report;
}

void TestCleaningJobInUse::keepsWhatAProgramStartedMeanwhileUses()
{
    startFirefoxAtTheFirst("removeFile");
    const CleaningReport report = clean({SliceKind::Cache, SliceKind::BrowserData});
    QVERIFY(!m_fixture->exists(".cache/other"));
    QVERIFY(!m_fixture->exists(".config/chromium/Default/History"));
    QVERIFY(m_fixture->exists(".mozilla/firefox/a/cookies.sqlite"));
    QVERIFY(m_fixture->exists(".mozilla/firefox/a/formhistory.sqlite"));
    QCOMPARE(report.refusalCount, 3U); // and the cache
    QCOMPARE(report.refusals.value(2).reason, RefusalReason::InUse);
}

void TestCleaningJobInUse::startFirefoxAtTheFirst(std::string_view call)
{
    m_machine.setHook([this, call, hasStarted = false](int, std::string_view name) mutable {
        if (name == call && !std::exchange(hasStarted, true))
            firefoxStarts();
        return 0;
    });
}

void TestCleaningJobInUse::keepsTheCacheOfAProgramThatRuns()
{
    firefoxStarts();
    const CleaningReport report = clean({SliceKind::Cache});
    QVERIFY(!m_fixture->exists(".cache/other"));
    QVERIFY(m_fixture->exists(".cache/mozilla/firefox/a/c"));
    QVERIFY(m_fixture->exists(".cache/mozilla/firefox/.hidden"));
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::InUse);
    QCOMPARE(report.refusals.value(0).path, m_fixture->home() + "/.cache/mozilla");
    QCOMPARE(report.refusalCount, 1U);
    QCOMPARE(m_chosen.front()->fileSize(), 5);
}

void TestCleaningJobInUse::tellsNothingOfWhatIsNotThere()
{
    m_machine.programs = QByteArrayList{"chrome", "geary"};
    const CleaningReport report = clean({SliceKind::Cache});
    QVERIFY(!m_fixture->exists(".cache/other"));
    QCOMPARE(report.refusalCount, 0U);
}

/// Its lock and its process tell of the same folder.
void TestCleaningJobInUse::takesNoSizeOffTwice()
{
    m_fixture->makeFile(".cache/BraveSoftware/Brave-Browser/c", 100);
    m_fixture->makeFile(".config/BraveSoftware/Brave-Browser/Default/x", 1);
    m_machine.setHook([this](int, std::string_view name) {
        if (name == "removeFile" && m_machine.programs->isEmpty()) {
            m_machine.programs = QByteArrayList{"brave"};
            m_fixture->folder().makeLink("anna/.config/BraveSoftware/Brave-Browser/SingletonLock",
                                         "elsewhere-1");
        }
        return 0;
    });
    const CleaningReport report = clean({SliceKind::Trash, SliceKind::Cache});
    QVERIFY(m_fixture->exists(".cache/BraveSoftware/Brave-Browser/c"));
    QCOMPARE(report.refusalCount, 1U);
    QCOMPARE(m_chosen.at(1)->fileSize(), 12); // of 112
}

/// Between the trash and the cache.
void TestCleaningJobInUse::keepsTheCacheOfAProgramStartedMeanwhile()
{
    startFirefoxAtTheFirst("removeFile");
    const CleaningReport report = clean({SliceKind::Trash, SliceKind::Cache});
    QVERIFY(!m_fixture->exists(".local/share/Trash/files/t"));
    QVERIFY(!m_fixture->exists(".cache/other"));
    QVERIFY(m_fixture->exists(".cache/mozilla/firefox/a/c"));
    QCOMPARE(report.refusalCount, 1U);
    QCOMPARE(report.refusals.value(0).path, m_fixture->home() + "/.cache/mozilla");
}

/// In the midst of the one folder that holds the caches of all.
void TestCleaningJobInUse::keepsTheCacheOfAProgramStartedWhileAllElseAroundItGoes()
{
    startFirefoxAtTheFirst("removeFile");
    const CleaningReport report = clean({SliceKind::Cache});
    QVERIFY(!m_fixture->exists(".cache/other"));
    QVERIFY(m_fixture->exists(".cache/mozilla/firefox/a/c"));
    QVERIFY(m_fixture->exists(".cache/mozilla/firefox/.hidden"));
    QCOMPARE(report.refusalCount, 1U);
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::InUse);
    QCOMPARE(report.refusals.value(0).path, m_fixture->home() + "/.cache/mozilla");
    QCOMPARE(m_chosen.front()->fileSize(), 5); // of 12
}

void TestCleaningJobInUse::keepsWhatIsNoCache()
{
    m_fixture->makeFile(".cache/rclone/vfs/remote/letter.odt", 7);
    m_fixture->makeFile(".cache/rclone/log", 7);
    m_fixture->makeFile(".cache/kioexec/krun/77_0/report.odt", 7);
    const CleaningReport report = clean({SliceKind::Cache});
    QVERIFY(m_fixture->exists(".cache/rclone/vfs/remote/letter.odt"));
    QVERIFY(m_fixture->exists(".cache/kioexec/krun/77_0/report.odt"));
    QVERIFY(!m_fixture->exists(".cache/rclone/log"));
    QVERIFY(!m_fixture->exists(".cache/other"));
    QCOMPARE(report.failureCount, 0U);
}

void TestCleaningJobInUse::countsNothingAsFreedThatStayed()
{
    startFirefoxAtTheFirst("removeFile");
    clean({SliceKind::Trash, SliceKind::Cache, SliceKind::BrowserData});
    QCOMPARE(m_chosen.at(0)->fileSize(), 5);
    QCOMPARE(m_chosen.at(1)->fileSize(), 5); // of 12
    QCOMPARE(m_chosen.at(2)->fileSize(), 5); // of 15
}

/// Firefox writes as soon as it has started.
void TestCleaningJobInUse::takesOffNoMoreThanWasMeasured()
{
    m_machine.setHook([this, hasStarted = false](int, std::string_view name) mutable {
        if (name == "removeFile" && !std::exchange(hasStarted, true)) {
            firefoxStarts();
            m_fixture->makeFile(".cache/mozilla/firefox/a/new", 1000);
            std::filesystem::resize_file(
                (m_fixture->home() + "/.mozilla/firefox/a/cookies.sqlite").toStdString(), 1000);
        }
        return 0;
    });
    clean({SliceKind::Cache, SliceKind::BrowserData});
    QCOMPARE(m_chosen.at(0)->fileSize(), 5); // of 12
    QCOMPARE(m_chosen.at(1)->fileSize(), 5); // of 15
}

void TestCleaningJobInUse::logsWhatStaysForAProgram()
{
    firefoxStarts();
    const LogRecorder log;
    const CleaningReport report = clean({SliceKind::BrowserData});
    QCOMPARE(report.refusalCount, 2U);
    QCOMPARE(report.refusals.size(), 2);
    QCOMPARE(
        log.lines()
            .filter(QRegularExpression(QStringLiteral(
                "^File might be locked: .*/(cookies|formhistory)\\.sqlite: used by a program$")))
            .size(),
        2);
}

void TestCleaningJobInUse::keepsWhatAnyProgramHoldsOpen()
{
    m_fixture->makeFile(".cache/player/a/song", 40);
    m_machine.hasFilesOfTheHost = true;
    const OtherProcess player([this] {
        const QByteArray song = m_fixture->home() + "/.cache/player/a/song";
        must(::open(song.constData(), O_RDONLY) >= 0, "an open file");
    });
    const CleaningReport report = clean({SliceKind::Cache});
    QVERIFY(m_fixture->exists(".cache/player/a/song"));
    QVERIFY(!m_fixture->exists(".cache/other"));
    QVERIFY(!m_fixture->exists(".cache/mozilla"));
    QCOMPARE(report.refusalCount, 1U);
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::InUse);
    QCOMPARE(report.refusals.value(0).path, m_fixture->home() + "/.cache/player");
    QCOMPARE(m_chosen.front()->fileSize(), 12); // of 52
}

/// Between the trash and the cache.
void TestCleaningJobInUse::keepsWhatAnyProgramHasBegunToUse()
{
    m_machine.setHook([this](int, std::string_view name) {
        if (name == "removeFile")
            m_machine.usedFiles = QByteArrayList{".cache/other/c"};
        return 0;
    });
    const CleaningReport report = clean({SliceKind::Trash, SliceKind::Cache});
    QVERIFY(!m_fixture->exists(".local/share/Trash/files/t"));
    QVERIFY(m_fixture->exists(".cache/other/c"));
    QVERIFY(!m_fixture->exists(".cache/mozilla"));
    QCOMPARE(report.refusalCount, 1U);
    QCOMPARE(m_chosen.at(0)->fileSize(), 5);
    QCOMPARE(m_chosen.at(1)->fileSize(), 7); // of 12
}

/// Its lock tells of the folder, too.
void TestCleaningJobInUse::takesAFolderInUseOffOnlyOnce()
{
    m_machine.setHook([this, hasStarted = false](int, std::string_view name) mutable {
        if (name == "removeFile" && !std::exchange(hasStarted, true)) {
            firefoxStarts();
            m_machine.usedFiles = QByteArrayList{".cache/mozilla/firefox/a/c"};
        }
        return 0;
    });
    const CleaningReport report = clean({SliceKind::Trash, SliceKind::Cache});
    QVERIFY(m_fixture->exists(".cache/mozilla/firefox/a/c"));
    QCOMPARE(report.refusalCount, 1U);
    QCOMPARE(m_chosen.at(1)->fileSize(), 5); // of 12
}

void TestCleaningJobInUse::keepsACacheThatCannotBeLookedAt()
{
    m_machine.usedFiles = tl::unexpected(EMFILE);
    const CleaningReport report = clean({SliceKind::Trash, SliceKind::Cache});
    QVERIFY(!m_fixture->exists(".local/share/Trash/files/t"));
    QVERIFY(m_fixture->exists(".cache/other/c"));
    QCOMPARE(report.refusals.value(0).path, m_fixture->home() + "/.cache");
    QCOMPARE(m_chosen.at(1)->fileSize(), 0);
}

VANTOR_GUI_TEST_MAIN(TestCleaningJobInUse)
#include "tst_CleaningJobInUse.moc"
