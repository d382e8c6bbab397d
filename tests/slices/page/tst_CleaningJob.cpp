#include "platform/system/HostSystemCalls.h"
#include "slices/page/CleaningJob.h"

#include "app/grant/ResourceManager.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "slices/record/Info.h"
#include "slices/record/SliceCatalogue.h"
#include "slices/sizing/FolderSizing.h"
#include "tests/slices/kit/Consent.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/GuiTestMain.h"

#include <QRegularExpression>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QThread>
#include <atomic>
#include <cerrno>
#include <new>
#include <semaphore>

namespace {

const CleaningJob::Exclusions kNothingExcluded = [](const CleaningJob::UseExclusions &use) {
    use(ExcludedPaths());
};

/// No note can be written in there, so that every removal of a file is one of the cleaning's.
const QString kNoFolder = QStringLiteral("/dev/null/none");

/// Holds every removal of a file until it is opened.
class Gate final
{
public:
    HookedSystem::Hook hook()
    {
        return [this](int, std::string_view name) {
            if (name == "removeFile") {
                ++m_arrivals;
                m_isOpen.wait(false);
            }
            return 0;
        };
    }
    /// How many removals were begun.
    int arrivals() const { return m_arrivals; }
    void open()
    {
        m_isOpen = true;
        m_isOpen.notify_all();
    }

private:
    std::atomic<int> m_arrivals = 0;
    std::atomic<bool> m_isOpen = false;
};

} // namespace

class TestCleaningJob final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void emptiesFoldersAndKeepsThem();
    void removesTheVeryFilesOfBrowserData();
    void measuresBeforeItRemoves();
    void tellsOnTheMainThread();
    void logsAndLeavesWhatIsLocked();
    void stopsBeforeTheNextItem();
    void isOverOnceItIsDestroyed();
    void waitsForNoMeasureAtItsEnd();
    void measuresNoMoreOnceItIsStopped();
    void asksForTheExclusionsAfterMeasuring();
    void removesNothingBeforeItKnowsTheExclusions();
    void givesBackNamesThatAnUnfinishedCleaningHasTaken();
    void cleansWhatItWasStartedWith();
    void removesNothingWhileTheExclusionsAreUnknown();
    void endsWhenThereIsNoMemoryForAPlan();

private:
    std::shared_ptr<Info> record(SliceKind kind) const;
    static void start(CleaningJob &job, const CleaningJob::Records &chosen,
                      const CleaningJob::Exclusions &exclusions = kNothingExcluded)
    {
        job.start(chosen, exclusions, consentTo(ResourceManager::access(), chosen));
    }
    CleaningReport clean(const std::vector<std::shared_ptr<Info>> &chosen);
    void makeTrash(int files);

    std::unique_ptr<PageFixture> m_fixture;
    HookedSystem m_calls;
};

void TestCleaningJob::init()
{
    m_calls.setHook({});
    m_fixture = std::make_unique<PageFixture>();
    m_fixture->grantHome();
    QVERIFY(ResourceManager::homeFolder() == m_fixture->homeUrl()); // as the page does first
}

void TestCleaningJob::cleanup()
{
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

std::shared_ptr<Info> TestCleaningJob::record(SliceKind kind) const
{
    const auto measure = [](const FileUrl &url, const FileUrls &) {
        return sizeForFolderAtPath(hostSystemCalls(), ResourceManager::access(), url);
    };
    return Info::infoWithName(QString::fromUtf16(sliceCatalogue()[indexOf(kind)].name),
                              sliceLocations(kind, m_fixture->homeUrl()), {measure, nullptr});
}

CleaningReport TestCleaningJob::clean(const std::vector<std::shared_ptr<Info>> &chosen)
{
    CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
    CleaningReport report;
    QSignalSpy finished(&job, &CleaningJob::finished);
    connect(&job, &CleaningJob::finished, this, [&](const CleaningReport &done) { report = done; });
    start(job, chosen);
    if (!finished.wait())
        qFatal("the cleaning did not end");
    return report;
}

void TestCleaningJob::makeTrash(int files)
{
    for (int i = 0; i < files; ++i)
        m_fixture->makeFile(".Trash/" + QByteArray::number(i), 0);
}

void TestCleaningJob::emptiesFoldersAndKeepsThem()
{
    m_fixture->makeFile("Downloads/a", 5);
    m_fixture->makeFile("Downloads/.hidden/b", 5);
    m_fixture->makeFile("Documents/c", 5);
    clean({record(SliceKind::Downloads), record(SliceKind::Trash)});
    QVERIFY(m_fixture->exists("Downloads"));
    QVERIFY(!m_fixture->exists("Downloads/a") && !m_fixture->exists("Downloads/.hidden"));
    QVERIFY(m_fixture->exists("Documents/c"));
}

void TestCleaningJob::removesTheVeryFilesOfBrowserData()
{
    m_fixture->makeFile("Library/Safari/History.plist", 5);
    m_fixture->makeFile("Library/Safari/Bookmarks.plist", 5);
    const CleaningReport report = clean({record(SliceKind::BrowserData)});
    QVERIFY(!m_fixture->exists("Library/Safari/History.plist"));
    QVERIFY(m_fixture->exists("Library/Safari/Bookmarks.plist"));
    QCOMPARE(report.removedItems, 1U);
    QCOMPARE(report.refusalCount, 0U); // absent files are no news
}

void TestCleaningJob::measuresBeforeItRemoves()
{
    m_fixture->makeFile(".Trash/a", 4321);
    const auto trash = record(SliceKind::Trash);
    clean({trash});
    QVERIFY(!m_fixture->exists(".Trash/a"));
    QCOMPARE(trash->fileSize(), 4321);
}

void TestCleaningJob::tellsOnTheMainThread()
{
    CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
    QThread *heardOn = nullptr;
    connect(
        &job, &CleaningJob::finished, this, [&] { heardOn = QThread::currentThread(); },
        Qt::DirectConnection);
    job.start({}, kNothingExcluded, {});
    QVERIFY(job.isRunning());
    QTRY_COMPARE(heardOn, QThread::currentThread());
    QVERIFY(!job.isRunning());
}

void TestCleaningJob::logsAndLeavesWhatIsLocked()
{
    m_fixture->makeFile(".Trash/locked", 5);
    m_fixture->makeFile(".Trash/other", 5);
    std::atomic<int> removals = 0;
    m_calls.setHook([&](int, std::string_view name) {
        return name == "removeFile" && ++removals == 1 ? EPERM : 0;
    });
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("^File might be locked: ")));
    const CleaningReport report = clean({record(SliceKind::Trash)});
    QCOMPARE(report.failureCount, 1U);
    QCOMPARE(report.removedItems, 1U);
}

void TestCleaningJob::stopsBeforeTheNextItem()
{
    constexpr int kFiles = 200;
    makeTrash(kFiles);
    Gate gate;
    m_calls.setHook(gate.hook());
    CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
    const auto atEnd = qScopeGuard([&] { gate.open(); }); // also where the test fails
    CleaningReport report;
    QSignalSpy finished(&job, &CleaningJob::finished);
    connect(&job, &CleaningJob::finished, this, [&](const CleaningReport &done) { report = done; });
    start(job, {record(SliceKind::Trash)});
    QTRY_VERIFY(gate.arrivals() > 0); // in the midst of it
    job.requestStop();
    gate.open();
    QVERIFY(finished.wait());
    QVERIFY(report.wasStopped);
    // So few files are one thread's, which was about to remove one.
    QCOMPARE(report.removedItems, 1U);
    QCOMPARE(gate.arrivals(), 1);
}

void TestCleaningJob::isOverOnceItIsDestroyed()
{
    makeTrash(20);
    Gate gate;
    m_calls.setHook(gate.hook());
    {
        CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
        const auto atEnd = qScopeGuard([&] { gate.open(); });
        start(job, {record(SliceKind::Trash)});
        QTRY_VERIFY(gate.arrivals() > 0);
    }
    // The thread that removes holds the access.
    QCOMPARE(ResourceManager::accessCount(), 0);
}

/// And it removes nothing when the disk answers after all.
void TestCleaningJob::waitsForNoMeasureAtItsEnd()
{
    m_fixture->makeFile(".Trash/a", 5);
    std::binary_semaphore isMeasuring(0), mayEnd(0);
    const auto trash = Info::infoWithName(
        QStringLiteral("Trash"), sliceLocations(SliceKind::Trash, m_fixture->homeUrl()),
        {[&](const FileUrl &, const FileUrls &) {
             isMeasuring.release();
             mayEnd.acquire(); // as a call waits for a disk that is dead
             return 5;
         },
         nullptr});
    {
        CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
        start(job, {trash});
        isMeasuring.acquire();
    } // else this would never be left
    mayEnd.release();
    awaitBackgroundThreads();
    QCoreApplication::processEvents();
    QVERIFY(trash->isMeasured());
    QVERIFY(m_fixture->exists(".Trash/a"));
}

void TestCleaningJob::measuresNoMoreOnceItIsStopped()
{
    CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
    std::atomic<int> measures = 0;
    const auto stopping = [&](const FileUrl &, const FileUrls &) {
        ++measures;
        job.requestStop();
        return 5;
    };
    CleaningJob::Records chosen;
    for (const SliceKind kind : {SliceKind::AppLogs, SliceKind::Downloads})
        chosen.push_back(Info::infoWithName(
            QString::fromUtf16(sliceCatalogue()[indexOf(kind)].name),
            FileUrls{m_fixture->homeUrl().appending("Downloads", FileUrlKind::Folder)},
            {stopping, nullptr}));
    CleaningReport report;
    QSignalSpy finished(&job, &CleaningJob::finished);
    connect(&job, &CleaningJob::finished, this, [&](const CleaningReport &done) { report = done; });
    start(job, chosen);
    QVERIFY(finished.wait());
    QVERIFY(report.wasStopped);
    QCOMPARE(measures.load(), 1);
}

void TestCleaningJob::asksForTheExclusionsAfterMeasuring()
{
    m_fixture->makeFile(".Trash/keep", 5);
    const FileUrl keep = m_fixture->homeUrl().appending(".Trash/keep", FileUrlKind::File);
    const auto trash = record(SliceKind::Trash);
    bool wasMeasured = false;
    CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
    QSignalSpy finished(&job, &CleaningJob::finished);
    const auto exclusions = [&](const CleaningJob::UseExclusions &use) {
        wasMeasured = trash->isMeasured();
        use(ExcludedPaths::fromStoredStrings({QString::fromLatin1(keep.absoluteString())}));
    };
    start(job, {trash}, exclusions);
    QVERIFY(finished.wait());
    QVERIFY(wasMeasured);
    QVERIFY(m_fixture->exists(".Trash/keep"));
}

/// The first cleaning is not over when the second begins, as if it had been killed. What lies aside
/// is not of a slice that the second one cleans.
void TestCleaningJob::givesBackNamesThatAnUnfinishedCleaningHasTaken()
{
    m_fixture->makeFile(".Trash/a", 5);
    m_fixture->makeFile(".Trash/keep", 5);
    m_fixture->makeFile("Downloads/b", 5);
    const FileUrl keep = m_fixture->homeUrl().appending(".Trash/keep", FileUrlKind::File);
    const auto exclusions = [&](const CleaningJob::UseExclusions &use) {
        use(ExcludedPaths::fromStoredStrings({QString::fromLatin1(keep.absoluteString())}));
    };
    Gate gate;
    std::atomic<bool> movesAside = false;
    m_calls.setHook([&, hold = gate.hook()](int number, std::string_view name) {
        movesAside = movesAside || name == "moveToFree";
        return movesAside ? hold(number, name) : 0;
    });
    CleaningJob unfinished(m_calls, ResourceManager::access(), m_fixture->defaults().folder());
    const auto atEnd = qScopeGuard([&] { gate.open(); });
    start(unfinished, {record(SliceKind::Trash)}, exclusions);
    QTRY_COMPARE(gate.arrivals(), 1); // moved aside, and not removed yet
    QVERIFY(!m_fixture->exists(".Trash/a"));
    CleaningJob next(hostSystemCalls(), ResourceManager::access(), m_fixture->defaults().folder());
    QSignalSpy finished(&next, &CleaningJob::finished);
    start(next, {record(SliceKind::Downloads)});
    QVERIFY(finished.wait());
    QVERIFY(m_fixture->exists(".Trash/a") && !m_fixture->exists("Downloads/b"));
}

/// However long it takes to find out what is excluded.
void TestCleaningJob::removesNothingBeforeItKnowsTheExclusions()
{
    m_fixture->makeFile(".Trash/a", 5);
    CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
    QSignalSpy finished(&job, &CleaningJob::finished);
    CleaningJob::UseExclusions answer;
    start(job, {record(SliceKind::Trash)},
          [&](const CleaningJob::UseExclusions &use) { answer = use; });
    QTRY_VERIFY(answer);
    awaitBackgroundThreads();
    QCoreApplication::processEvents();
    QVERIFY(job.isRunning() && finished.isEmpty());
    QVERIFY(m_fixture->exists(".Trash/a"));
    answer(ExcludedPaths());
    QVERIFY(finished.wait());
    QVERIFY(!m_fixture->exists(".Trash/a"));
}

/// Whatever becomes of a record while it is measured.
void TestCleaningJob::cleansWhatItWasStartedWith()
{
    m_fixture->makeFile(".Trash/a", 5);
    m_fixture->makeFile("Documents/keep", 70);
    const auto trash = record(SliceKind::Trash);
    CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
    QSignalSpy finished(&job, &CleaningJob::finished);
    const auto exclusions = [&](const CleaningJob::UseExclusions &use) {
        trash->setLocations({m_fixture->homeUrl().appending("Documents", FileUrlKind::Folder)}, {});
        kNothingExcluded(use);
    };
    start(job, {trash}, exclusions);
    QVERIFY(finished.wait());
    QVERIFY(!m_fixture->exists(".Trash/a"));
    QVERIFY(m_fixture->exists("Documents/keep"));
    QCOMPARE(trash->fileSize(), 5);
}

void TestCleaningJob::removesNothingWhileTheExclusionsAreUnknown()
{
    m_fixture->makeFile(".Trash/a", 5);
    CleaningJob job(m_calls, ResourceManager::access(), kNoFolder);
    QSignalSpy finished(&job, &CleaningJob::finished);
    QTest::ignoreMessage(QtInfoMsg,
                         "File might be locked: everything: nobody knows what is excluded");
    start(job, {record(SliceKind::Trash)},
          [](const CleaningJob::UseExclusions &use) { use(std::nullopt); });
    QVERIFY(finished.wait());
    QVERIFY(m_fixture->exists(".Trash/a"));
}

void TestCleaningJob::endsWhenThereIsNoMemoryForAPlan()
{
    makeTrash(3);
    m_calls.setHook([](int, std::string_view name) {
        if (name == "identityOf")
            throw std::bad_alloc();
        return 0;
    });
    const CleaningReport report = clean({record(SliceKind::Trash)});
    QCOMPARE(report.refusals.size(), 1);
    QCOMPARE(report.refusals.first().reason, RefusalReason::OutOfMemory);
    QVERIFY(m_fixture->exists(".Trash/2"));
}

VANTOR_GUI_TEST_MAIN(TestCleaningJob)
#include "tst_CleaningJob.moc"
