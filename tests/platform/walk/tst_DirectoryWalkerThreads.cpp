#include "tests/platform/walk/WalkRecord.h"
#include "tests/support/run/TestMain.h"

#include <QSet>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <random>
#include <set>

namespace {

constexpr std::chrono::seconds kPatience{20};

/// Holds each thread that arrives until all have arrived.
class MeetingPoint final
{
public:
    explicit MeetingPoint(std::size_t threads) : m_threads(threads) {}

    /// False when the others do not arrive. Each thread comes with its own visitor.
    bool meet(const RecordingVisitor &visitor)
    {
        std::unique_lock lock(m_mutex);
        m_present.insert(&visitor);
        m_changed.notify_all();
        return m_changed.wait_for(lock, kPatience,
                                  [this] { return m_present.size() >= m_threads; });
    }

private:
    const std::size_t m_threads;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::set<const RecordingVisitor *> m_present;
};

/// Makes random folders, files, links and pipes; the same ones for the same seed.
void growAtRandom(const MadeTree &tree, unsigned seed)
{
    std::mt19937 random(seed);
    QByteArrayList folders{""};
    constexpr int kItems = 300;
    for (int i = 0; i < kItems; ++i) {
        const QByteArray folder = folders.at(random() % folders.size());
        const char *dot = random() % 8 == 0 ? "." : "";
        const QByteArray path =
            (folder.isEmpty() ? folder : folder + '/') + dot + "item" + QByteArray::number(i);
        switch (random() % 5) {
        case 0:
        case 1:
            tree.makeFolder(path);
            folders.append(path);
            break;
        case 2:
            tree.makeLink(path, "..");
            break;
        default:
            tree.makeFile(path, static_cast<qint64>(random() % 100'000));
        }
    }
}

void compare(const WalkRecord &record, const WalkRecord &expected)
{
    QCOMPARE(record.found, expected.found);
    QCOMPARE(record.entered, expected.entered);
    QCOMPARE(record.failed, expected.failed);
}

} // namespace

/// How several threads share one walk.
class TestDirectoryWalkerThreads final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findWhatOneFinds_data();
    void findWhatOneFinds();
    void shareTheEntriesOfOneWideFolder();
    void shareSubfolders();
    void hearOfAFolderBeforeItsEntries();
    void stopAtOnce_data();
    void stopAtOnce();
    void doNotBeginOnceStopped();
    void areAtLeastOneAndAtMostFour();
};

void TestDirectoryWalkerThreads::findWhatOneFinds_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 12; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestDirectoryWalkerThreads::findWhatOneFinds()
{
    QFETCH(unsigned, seed);
    const MadeTree tree;
    growAtRandom(tree, seed);
    RecordedWalk alone(tree);
    const WalkRecord expected = alone.run();
    QVERIFY(!expected.found.isEmpty());
    for (const unsigned threads : {2U, 3U, 4U}) {
        for (const unsigned openFolders : {2U, 6U, 48U}) {
            RecordedWalk walk(tree, threads);
            walk.options.openFolders = openFolders;
            compare(walk.run(), expected);
        }
    }
}

void TestDirectoryWalkerThreads::shareTheEntriesOfOneWideFolder()
{
    const MadeTree tree;
    constexpr int kFiles = 5000;
    for (int i = 0; i < kFiles; ++i)
        tree.makeFile("file" + QByteArray::number(i));
    MeetingPoint point(2);
    std::atomic<bool> haveMet = true;
    RecordedWalk walk(tree, 2);
    for (RecordingVisitor &visitor : walk.visitors())
        visitor.onFound = [&](const WalkedEntry &) { haveMet = haveMet && point.meet(visitor); };
    const WalkRecord record = walk.run();
    QVERIFY(haveMet);
    QCOMPARE(record.found.size(), kFiles);
    QCOMPARE(QSet<QByteArray>(record.found.begin(), record.found.end()).size(), kFiles);
}

void TestDirectoryWalkerThreads::shareSubfolders()
{
    const MadeTree tree;
    for (const char *folder : {"a", "b", "c", "d"}) {
        tree.makeFolder(folder);
        tree.makeFile(QByteArray(folder) + "/file");
    }
    MeetingPoint point(4);
    std::atomic<bool> haveMet = true;
    RecordedWalk walk(tree, 4);
    for (RecordingVisitor &visitor : walk.visitors())
        visitor.onFound = [&](const WalkedEntry &) { haveMet = haveMet && point.meet(visitor); };
    QCOMPARE(walk.run().found.size(), 4);
    QVERIFY(haveMet);
}

void TestDirectoryWalkerThreads::hearOfAFolderBeforeItsEntries()
{
    const MadeTree tree;
    growAtRandom(tree, 99);
    std::mutex mutex;
    std::set<QByteArray> entered;
    bool isInOrder = true;
    RecordedWalk walk(tree, 4);
    for (RecordingVisitor &visitor : walk.visitors()) {
        visitor.detailOf = [&](const QByteArray &path) {
            const std::scoped_lock lock(mutex);
            isInOrder = isInOrder && entered.insert(path).second;
            return EntryDetail::Status;
        };
        visitor.onFound = [&](const WalkedEntry &entry) {
            const std::scoped_lock lock(mutex);
            isInOrder = isInOrder && entered.count(entry.folder.pathTo({})) == 1;
        };
    }
    walk.run();
    QVERIFY(isInOrder);
}

void TestDirectoryWalkerThreads::stopAtOnce_data()
{
    QTest::addColumn<unsigned>("threads");
    QTest::addRow("one thread") << 1U;
    QTest::addRow("four threads") << 4U;
}

void TestDirectoryWalkerThreads::stopAtOnce()
{
    QFETCH(unsigned, threads);
    const MadeTree tree;
    for (int i = 0; i < 50; ++i) {
        const QByteArray folder = "folder" + QByteArray::number(i);
        tree.makeFolder(folder);
        for (int j = 0; j < 20; ++j)
            tree.makeFile(folder + "/file" + QByteArray::number(j));
    }
    RecordedWalk walk(tree, threads);
    std::atomic<unsigned> found = 0;
    std::atomic<unsigned> foundLate = 0;
    std::atomic<bool> isStopped = false;
    constexpr unsigned kEnough = 107; // in the middle of a folder
    for (RecordingVisitor &visitor : walk.visitors()) {
        visitor.onFound = [&](const WalkedEntry &) {
            foundLate += isStopped ? 1 : 0;
            if (++found == kEnough) {
                walk.stop.request_stop();
                isStopped = true;
            }
        };
    }
    walk.run();
    // Each other thread may still report one entry, but not a second one.
    QVERIFY(found >= kEnough);
    QVERIFY(foundLate < threads);
}

void TestDirectoryWalkerThreads::doNotBeginOnceStopped()
{
    const MadeTree tree;
    tree.makeFile("file");
    RecordedWalk walk(tree, 2);
    walk.stop.request_stop();
    QCOMPARE(walk.run().found, QByteArrayList());
}

void TestDirectoryWalkerThreads::areAtLeastOneAndAtMostFour()
{
    QVERIFY(usefulWalkThreads() >= 1);
    QVERIFY(usefulWalkThreads() <= 4);
}

VANTOR_TEST_MAIN(TestDirectoryWalkerThreads)
#include "tst_DirectoryWalkerThreads.moc"
