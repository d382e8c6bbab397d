#include "largefiles/search/CurrentSizeReader.h"
#include "largefiles/search/LargeFileList.h"
#include "largefiles/search/SearchJob.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/largefiles/search/Gate.h"
#include "tests/largefiles/search/SearchKit.h"
#include "tests/support/calls/WatchedSystemCalls.h"
#include "tests/support/run/TestMain.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>
#include <cerrno>
#include <condition_variable>
#include <thread>

namespace {

using namespace std::chrono_literals;

/// In milliseconds. Instrumented code takes many times as long; there the limit shows only a search
/// that goes on.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr qint64 kLongestStop = 2000;
#else
constexpr qint64 kLongestStop = 100;
#endif

/// A home with a search and its list.
struct Sheet
{
    explicit Sheet(const SystemCalls &calls = hostSystemCalls())
        : access(home),
          job(calls, access, list),
          finished(&job, &SearchJob::finished),
          stopped(&job, &SearchJob::stopped)
    {
    }

    /// The job waits for no search, but the home must.
    ~Sheet()
    {
        job.stop();
        awaitBackgroundThreads();
    }

    void start(const QStringList &excluded = {})
    {
        job.beginSearch(searchURLs(homeUrl(home)), excluded);
    }
    bool awaitFinished() { return !finished.isEmpty() || finished.wait(); }
    bool searchToTheEnd(const QStringList &excluded = {})
    {
        finished.clear();
        start(excluded);
        return awaitFinished();
    }
    QByteArrayList names() const
    {
        QByteArrayList names;
        for (const FileUrl &url : list.fileURLs())
            names.append(url.path().mid(home.path().size() + 1));
        return names;
    }

    MadeTree home;
    HomeAccess access;
    LargeFileList list;
    SearchJob job;
    QSignalSpy finished;
    QSignalSpy stopped;
};

} // namespace

Q_DECLARE_METATYPE(SearchReport)

class TestSearchJob final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsTheLargestFirst();
    void listsEachFileOnceInTwoSearches();
    void takesOutWhatVanishedBetweenSearches();
    void takesOutWhatVanishesDuringTheSearch();
    void takesOutWhatIsNoFileAnyMore();
    void keepsWhatItCannotAskAbout();
    void keepsPicksFromSearchToSearch();
    void tellsWhereItSearches();
    void tellsWhatItCouldNotRead();
    void heedsExclusions();
    void endsTheOlderOfTwoSearches();
    void listsNothingAfterTheStop();
    void endsWhenTheListIsEmptied();
    void stopsWithin100Milliseconds();
    void ignoresAStopWithoutASearch();
    void holdsUpNothingAtItsEnd();
    void mayEndWhileItSearches();
    void readsFreshSizesOffTheMainThread();
};

void TestSearchJob::listsTheLargestFirst()
{
    Sheet sheet;
    make(sheet.home, {"Movies/", "Music/"});
    sheet.home.makeFile("Movies/middle", kLarge + 1);
    sheet.home.makeFile("Music/largest", kLarge + 2);
    sheet.home.makeFile("Music/smallest", kLarge);
    sheet.start();
    QVERIFY(sheet.job.isRunning());
    QVERIFY(sheet.awaitFinished());
    QVERIFY(!sheet.job.isRunning());
    QCOMPARE(sheet.names(), (QByteArrayList{"Music/largest", "Movies/middle", "Music/smallest"}));
    const auto report = sheet.finished.first().first().value<SearchReport>();
    QVERIFY(report.isComplete);
    QCOMPARE(report.items, 3);
    QTRY_VERIFY(!sheet.job.isAtWork());
    QCOMPARE(sheet.access.starts(), sheet.access.stops());
}

void TestSearchJob::listsEachFileOnceInTwoSearches()
{
    Sheet sheet;
    make(sheet.home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    QVERIFY(sheet.searchToTheEnd());
    const QByteArrayList first = sheet.names();
    QCOMPARE(first, (QByteArrayList{"Movies/a", "Music/b"}));
    make(sheet.home, {"Desktop/", "Desktop/c"});
    QVERIFY(sheet.searchToTheEnd());
    QCOMPARE(sheet.names(), first + QByteArrayList{"Desktop/c"});
}

void TestSearchJob::takesOutWhatVanishedBetweenSearches()
{
    Sheet sheet;
    make(sheet.home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    QVERIFY(sheet.searchToTheEnd());
    sheet.home.remove("Movies/a");
    sheet.home.remove("Movies");
    QCOMPARE(sheet.list.rowCount(), 2);
    QVERIFY(sheet.searchToTheEnd());
    QCOMPARE(sheet.names(), QByteArrayList{"Music/b"});
}

void TestSearchJob::takesOutWhatVanishesDuringTheSearch()
{
    Gate gate("Sites");
    Sheet sheet(gate.calls);
    make(sheet.home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    sheet.start();
    QTRY_COMPARE(sheet.list.rowCount(), 2);
    sheet.home.remove("Movies/a");
    gate.open();
    QVERIFY(sheet.awaitFinished());
    QCOMPARE(sheet.names(), QByteArrayList{"Music/b"});
}

void TestSearchJob::takesOutWhatIsNoFileAnyMore()
{
    Sheet sheet;
    make(sheet.home, {"Movies/", "Movies/a", "Movies/b", "Movies/c"});
    QVERIFY(sheet.searchToTheEnd());
    QCOMPARE(sheet.list.rowCount(), 3);
    sheet.home.remove("Movies/a");
    sheet.home.makeFolder("Movies/a");
    sheet.home.remove("Movies/b");
    sheet.home.makeLink("Movies/b", "c");
    QVERIFY(sheet.searchToTheEnd());
    QCOMPARE(sheet.names(), QByteArrayList{"Movies/c"});
}

void TestSearchJob::keepsWhatItCannotAskAbout()
{
    bool isRefused = false;
    const WatchedSystemCalls calls([&](int, WatchedCall, const char *name) {
        return isRefused && QByteArray(name) == "Movies" ? EACCES : 0;
    });
    Sheet sheet(calls);
    make(sheet.home, {"Movies/", "Movies/a"});
    QVERIFY(sheet.searchToTheEnd());
    QTRY_VERIFY(!sheet.job.isAtWork());
    isRefused = true;
    QVERIFY(sheet.searchToTheEnd());
    QCOMPARE(sheet.names(), QByteArrayList{"Movies/a"});
}

void TestSearchJob::keepsPicksFromSearchToSearch()
{
    Sheet sheet;
    make(sheet.home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    QVERIFY(sheet.searchToTheEnd());
    sheet.list.toggle(1);
    sheet.home.makeFile("Movies/larger", 2 * kLarge);
    QVERIFY(sheet.searchToTheEnd());
    QCOMPARE(sheet.names(), (QByteArrayList{"Movies/larger", "Movies/a", "Music/b"}));
    QCOMPARE(sheet.list.selectedURLs(), FileUrls{fileIn(sheet.home, "Music/b")});
}

void TestSearchJob::tellsWhereItSearches()
{
    Sheet sheet;
    make(sheet.home, {"Movies/", "Desktop/", "Sites/"});
    QByteArrayList folders;
    connect(&sheet.job, &SearchJob::searching, this,
            [&](const FileUrl &folder) { folders.append(folder.lastPathComponent()); });
    QVERIFY(sheet.searchToTheEnd());
    QCOMPARE(folders, (QByteArrayList{"Desktop", "Movies", "Sites"}));
}

void TestSearchJob::tellsWhatItCouldNotRead()
{
    const WatchedSystemCalls calls([](int, WatchedCall, const char *name) {
        return QByteArray(name) == "closed" ? EACCES : 0;
    });
    Sheet sheet(calls);
    make(sheet.home, {"Movies/", "Movies/closed/", "Music/", "Music/a"});
    int told = 0;
    connect(&sheet.job, &SearchJob::unreadable, this, [&] { ++told; });
    for (int round = 0; round < 2; ++round) {
        QVERIFY(sheet.searchToTheEnd());
        const auto report = sheet.finished.first().first().value<SearchReport>();
        QVERIFY(!report.isComplete);
        QCOMPARE(report.unreadable.size(), 1);
        QCOMPARE(report.unreadable.first().url.path(), sheet.home.path("Movies/closed"));
        QCOMPARE(report.unreadable.first().error, EACCES);
        QCOMPARE(told, round + 1);
    }
    QCOMPARE(sheet.names(), QByteArrayList{"Music/a"});
}

void TestSearchJob::heedsExclusions()
{
    Sheet sheet;
    make(sheet.home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    QVERIFY(sheet.searchToTheEnd({QStringLiteral("/Movies/")}));
    QCOMPARE(sheet.names(), QByteArrayList{"Music/b"});
}

void TestSearchJob::endsTheOlderOfTwoSearches()
{
    Gate gate("Music");
    Sheet sheet(gate.calls);
    make(sheet.home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    sheet.start();
    gate.awaitArrival(); // the older one has found a file and not delivered it
    sheet.start();
    gate.open();
    QVERIFY(sheet.awaitFinished());
    QTRY_VERIFY(!sheet.job.isAtWork());
    QCOMPARE(sheet.finished.size(), 1);
    QCOMPARE(sheet.stopped.size(), 0);
    QCOMPARE(sheet.names(), (QByteArrayList{"Movies/a", "Music/b"}));
}

void TestSearchJob::listsNothingAfterTheStop()
{
    Gate gate("Music");
    Sheet sheet(gate.calls);
    make(sheet.home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    sheet.start();
    gate.awaitArrival();
    sheet.job.stop();
    QVERIFY(!sheet.job.isRunning());
    QCOMPARE(sheet.stopped.size(), 1);
    gate.open();
    QTRY_VERIFY(!sheet.job.isAtWork());
    QCOMPARE(sheet.list.rowCount(), 0);
    QCOMPARE(sheet.finished.size(), 0);
}

void TestSearchJob::endsWhenTheListIsEmptied()
{
    Gate gate("Music");
    Sheet sheet(gate.calls);
    make(sheet.home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    sheet.start();
    QTRY_COMPARE(sheet.list.rowCount(), 1);
    sheet.list.deleteData();
    QCOMPARE(sheet.stopped.size(), 1);
    gate.open();
    QTRY_VERIFY(!sheet.job.isAtWork());
    QCOMPARE(sheet.list.rowCount(), 0);
}

void TestSearchJob::stopsWithin100Milliseconds()
{
    Gate gate("Documents"); // holds the search where nearly everything is still to come
    Sheet sheet(gate.calls);
    sheet.home.makeFolder("Documents");
    for (int folder = 0; folder < 60; ++folder) {
        const QByteArray name = "Documents/" + QByteArray::number(folder);
        sheet.home.makeFolder(name);
        for (int file = 0; file < 100; ++file)
            sheet.home.makeFile(name + '/' + QByteArray::number(file), kLarge);
    }
    sheet.start();
    gate.awaitArrival();
    QElapsedTimer timer;
    timer.start();
    sheet.job.stop();
    gate.open();
    while (sheet.job.isAtWork() && !timer.hasExpired(5000))
        QCoreApplication::processEvents();
    QVERIFY2(timer.elapsed() < kLongestStop, QByteArray::number(timer.elapsed()));
    QCOMPARE(sheet.list.rowCount(), 0);
    QVERIFY(sheet.finished.isEmpty());
}

void TestSearchJob::ignoresAStopWithoutASearch()
{
    Sheet sheet;
    sheet.job.stop();
    QCOMPARE(sheet.stopped.size(), 0);
    QVERIFY(sheet.searchToTheEnd());
    sheet.job.stop();
    QCOMPARE(sheet.stopped.size(), 0);
}

/// A disk that never answers must not keep the sheet, and so the program, from ending.
void TestSearchJob::holdsUpNothingAtItsEnd()
{
    const MadeTree home;
    make(home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    HomeAccess access(home);
    LargeFileList list;
    Gate gate("Music");
    std::atomic<bool> wasHeldUp = false;
    auto job = std::make_unique<SearchJob>(gate.calls, access, list);
    job->beginSearch(searchURLs(homeUrl(home)), {});
    gate.awaitArrival();
    {
        std::mutex mutex;
        std::condition_variable_any ended;
        const std::jthread rescuer([&](const std::stop_token &hasEnded) {
            std::unique_lock lock(mutex);
            ended.wait_for(lock, hasEnded, 5s, [] { return false; });
            wasHeldUp = !hasEnded.stop_requested();
            gate.open();
        });
        job.reset();
    }
    QVERIFY(!wasHeldUp);
    awaitBackgroundThreads();
    QCoreApplication::processEvents();
    QCOMPARE(list.rowCount(), 0);
    QCOMPARE(access.starts(), access.stops());
}

void TestSearchJob::mayEndWhileItSearches()
{
    const MadeTree home;
    make(home, {"Movies/", "Movies/a"});
    HomeAccess access(home);
    LargeFileList list;
    for (int round = 0; round < 50; ++round) {
        SearchJob job(hostSystemCalls(), access, list);
        job.beginSearch(searchURLs(homeUrl(home)), {});
        job.beginSearch(searchURLs(homeUrl(home)), {});
    }
    awaitBackgroundThreads();
    QCOMPARE(access.starts(), access.stops());
}

void TestSearchJob::readsFreshSizesOffTheMainThread()
{
    const MadeTree home;
    make(home, {"Movies/", "Movies/a", "Movies/b"});
    home.makeLink("Movies/link", "a");
    HomeAccess access(home);
    std::atomic<bool> wasOnMain = false;
    const Qt::HANDLE mainThread = QThread::currentThreadId();
    const WatchedSystemCalls calls([&](int, WatchedCall, const char *) {
        wasOnMain = wasOnMain || QThread::currentThreadId() == mainThread;
        return 0;
    });
    CurrentSizeReader sizes(calls, access);
    QList<CurrentSize> unwanted;
    QList<CurrentSize> answer;
    sizes.read({fileIn(home, "Movies/b")},
               [&](const QList<CurrentSize> &read) { unwanted = read; });
    sizes.read({fileIn(home, "Movies/a"), fileIn(home, "Movies/gone"), fileIn(home, "Movies/link"),
                fileIn(home, "Movies")},
               [&](const QList<CurrentSize> &read) { answer = read; });
    QTRY_COMPARE(answer.size(), 4);
    QCOMPARE(answer.first().bytes, kLarge);
    QVERIFY(answer.first().isDeletable);
    QCOMPARE(answer.count(CurrentSize()), 3);
    QVERIFY(unwanted.isEmpty());
    QVERIFY(!wasOnMain);
}

VANTOR_TEST_MAIN(TestSearchJob)
#include "tst_SearchJob.moc"
