#include "app/ResourceManager.h"
#include "slices/CleaningJob.h"
#include "slices/ExcludedPaths.h"
#include "slices/HomeSurvey.h"
#include "slices/Info.h"
#include "tests/support/GuiTestMain.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/PageFixture.h"
#include "tests/support/QuietMachine.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <unistd.h>

/// What a cleaning does about programs that begin to use what it was asked to remove.
class TestCleaningJobInUse final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void keepsWhatAProgramStartedMeanwhileUses();
    void logsWhatStaysForAProgram();

private:
    void firefoxStarts() const
    {
        m_fixture->folder().makeLink("anna/.mozilla/firefox/a/lock",
                                     "127.0.1.1:+" + QByteArray::number(::getpid()));
    }
    HomeLayout layout() const
    {
        const AccessScope scope(ResourceManager::access());
        return surveyHome(m_calls, ResourceManager::access(), m_fixture->homeUrl(), {});
    }
    CleaningReport clean(const QList<SliceKind> &kinds);

    std::unique_ptr<PageFixture> m_fixture;
    QuietMachine m_calls;
};

void TestCleaningJobInUse::init()
{
    m_calls.setHook({});
    m_fixture = std::make_unique<PageFixture>(HomeKind::Freedesktop);
    m_fixture->grantHome();
    QVERIFY(ResourceManager::homeFolder() == m_fixture->homeUrl());
    m_fixture->makeFile(".cache/other/c", 5);
    m_fixture->makeFile(".config/chromium/Default/History", 5);
    m_fixture->makeFile(".mozilla/firefox/a/cookies.sqlite", 5);
    m_fixture->makeFile(".mozilla/firefox/a/formhistory.sqlite", 5);
}

void TestCleaningJobInUse::cleanup()
{
    m_fixture.reset();
}

CleaningReport TestCleaningJobInUse::clean(const QList<SliceKind> &kinds)
{
    const HomeLayout layout = this->layout();
    CleaningJob::Records chosen;
    for (const SliceKind kind : kinds)
        chosen.push_back(Info::infoWithName(
            QString::fromUtf16(sliceCatalogue()[indexOf(kind)].name), layout.locations(kind),
            {[](const FileUrl &) { return qint64{5}; }, nullptr}));
    CleaningJob job(m_calls, ResourceManager::access());
    CleaningReport report;
    QSignalSpy finished(&job, &CleaningJob::finished);
    connect(&job, &CleaningJob::finished, this, [&](const CleaningReport &done) { report = done; });
    job.start(
        chosen, [] { return ExcludedPaths(); }, layout);
    if (!finished.wait())
        qFatal("the cleaning did not end");
    return report;
}

void TestCleaningJobInUse::keepsWhatAProgramStartedMeanwhileUses()
{
    bool hasStarted = false;
    m_calls.setHook([&](int, std::string_view name) {
        if (name == "removeFile" && !std::exchange(hasStarted, true))
            firefoxStarts();
        return 0;
    });
    const CleaningReport report = clean({SliceKind::Cache, SliceKind::BrowserData});
    QVERIFY(hasStarted);
    QVERIFY(!m_fixture->exists(".cache/other"));
    QVERIFY(!m_fixture->exists(".config/chromium/Default/History"));
    QVERIFY(m_fixture->exists(".mozilla/firefox/a/cookies.sqlite"));
    QVERIFY(m_fixture->exists(".mozilla/firefox/a/formhistory.sqlite"));
    QCOMPARE(report.refusalCount, 2U);
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::InUse);
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

VANTOR_GUI_TEST_MAIN(TestCleaningJobInUse)
#include "tst_CleaningJobInUse.moc"
