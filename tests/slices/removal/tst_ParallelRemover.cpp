#include "slices/removal/ParallelRemover.h"

#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/TestMain.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

/// Says that the cleaned files lie on a disk, and watches the calls.
class OnDisk : public HookedCalls
{
public:
    bool isForOneThread(int) const override { return false; }
    std::optional<int> before(const char *call, int, const char *) const override
    {
        if (QByteArrayView(call) == "removeFile")
            watch();
        return {};
    }

    /// Lets the first thread remove nothing before there is a second one.
    void waitForTwo() { m_waitsForTwo = true; }
    /// Those that removed a file.
    std::size_t threads() const { return m_threads.size(); }
    void stopAfter(int removals, std::stop_source &stop)
    {
        m_stopAfter = removals;
        m_stop = &stop;
    }

private:
    static constexpr std::chrono::seconds kLongest{30};

    /// On the thread that removes.
    void watch() const
    {
        std::unique_lock lock(m_mutex);
        m_threads.insert(std::this_thread::get_id());
        m_changed.notify_all();
        if (m_waitsForTwo)
            m_changed.wait_for(lock, kLongest, [this] { return m_threads.size() > 1; });
        if (m_stop && ++m_removals == m_stopAfter)
            m_stop->request_stop();
    }

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    mutable std::set<std::thread::id> m_threads;
    mutable int m_removals = 0;
    bool m_waitsForTwo = false;
    int m_stopAfter = 0;
    std::stop_source *m_stop = nullptr;
};

} // namespace

class TestParallelRemover final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void sharesAWideFolderBetweenThreads();
    void removesManyFoldersInFolders();
    void worksAloneWhereThreadsGainNothing();
    void stopsBeforeTheNextItem();
    void endsWhereThereIsNothing();
    void triesNoFolderThatSomethingStaysIn();

private:
    CleaningReport cleanWith(const SystemCalls &calls, std::stop_token stop = {},
                             const FileUrls &excluded = {}) const
    {
        const LogRecorder silenced;
        const CleaningPlan plan = makeCleaningPlan(
            calls, *m_home, {contentsOf({m_home->folder("Downloads")})}, excluding(excluded));
        return performCleaning(calls, plan, std::move(stop));
    }
    int makeMany(int folders, int files) const
    {
        for (int i = 0; i < folders * files; ++i)
            makeFile(m_downloads + '/' + QByteArray::number(i % 7) + '/' +
                         QByteArray::number(i % folders) + '/' + QByteArray::number(i),
                     {});
        return int(tree(m_downloads).size());
    }

    std::unique_ptr<CleaningGround> m_scratch;
    std::unique_ptr<GrantedFolder> m_home;
    QByteArray m_downloads;
};

void TestParallelRemover::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_downloads = *m_scratch / "home/Downloads";
    makeFolder(m_downloads);
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home");
}

void TestParallelRemover::sharesAWideFolderBetweenThreads()
{
    constexpr int kFiles = 4000;
    for (int i = 0; i < kFiles; ++i)
        makeFile(m_downloads + "/wide/" + QByteArray::number(i), {});
    OnDisk calls;
    calls.waitForTwo();
    const CleaningReport report = cleanWith(calls);
    QVERIFY(calls.threads() >= 2);
    QCOMPARE(report.removedItems, std::uint64_t(kFiles + 1));
    QVERIFY(tree(m_downloads).empty());
}

void TestParallelRemover::removesManyFoldersInFolders()
{
    const int items = makeMany(60, 50);
    const OnDisk calls;
    const CleaningReport report = cleanWith(calls);
    QCOMPARE(report.removedItems, std::uint64_t(items));
    QVERIFY(report.failures.isEmpty() && report.refusals.isEmpty());
    QVERIFY(tree(m_downloads).empty());
}

void TestParallelRemover::worksAloneWhereThreadsGainNothing()
{
    class Alone final : public OnDisk
    {
    public:
        bool isForOneThread(int) const override { return true; }
    };
    makeMany(20, 20);
    const Alone calls;
    cleanWith(calls);
    QCOMPARE(calls.threads(), std::size_t(1));
    QVERIFY(tree(m_downloads).empty());
}

void TestParallelRemover::stopsBeforeTheNextItem()
{
    constexpr int kFiles = 2000;
    constexpr int kBefore = 100;
    for (int i = 0; i < kFiles; ++i)
        makeFile(m_downloads + '/' + QByteArray::number(i), {});
    std::stop_source stop;
    OnDisk calls;
    calls.stopAfter(kBefore, stop);
    const CleaningReport report = cleanWith(calls, stop.get_token());
    QVERIFY(report.wasStopped);
    QVERIFY(report.failures.isEmpty() && report.refusals.isEmpty());
    // The other three threads may be at an item each, too.
    QVERIFY(report.removedItems >= kBefore && report.removedItems <= kBefore + 3);
    QCOMPARE(tree(m_downloads).size() + report.removedItems, std::size_t(kFiles));
}

void TestParallelRemover::endsWhereThereIsNothing()
{
    const OnDisk calls;
    QCOMPARE(cleanWith(calls).removedItems, std::uint64_t(0));
    makeFolder(m_downloads + "/empty");
    QCOMPARE(cleanWith(calls).removedItems, std::uint64_t(1));
}

void TestParallelRemover::triesNoFolderThatSomethingStaysIn()
{
    class Locked final : public OnDisk
    {
    public:
        std::optional<int> before(const char *call, int, const char *name) const override
        {
            return qstrcmp(call, "removeFile") == 0 && QByteArrayView(name).endsWith("locked")
                       ? std::optional(EBUSY)
                       : std::nullopt;
        }
    };
    for (const char *name : {"way/further/kept", "way/gone", "around/locked", "around/gone"})
        makeFile(m_downloads + '/' + name);
    const CleaningReport report =
        cleanWith(Locked(), {}, {m_home->file("Downloads/way/further/kept")});
    QCOMPARE(tree(m_downloads), std::set<QByteArray>({"way", "way/further", "way/further/kept",
                                                      "around", "around/locked"}));
    // The folders around do not count as failures.
    QCOMPARE(report.failures.size(), 1);
    QCOMPARE(report.failures.first().path, m_downloads + "/around/locked");
    QVERIFY(report.refusals.isEmpty());
}

VANTOR_TEST_MAIN(TestParallelRemover)
#include "tst_ParallelRemover.moc"
