#include "platform/system/FileStatus.h"
#include "platform/walk/WalkedFolder.h"
#include "tests/support/run/TestMain.h"

#include <thread>
#include <vector>

class TestWalkedFolder final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsPathsFromTheStart();
    void keepsTheFoldersAboveAlive();
    void letsGoOfALongChain();
    void isSharedAmongThreads();
};

void TestWalkedFolder::tellsPathsFromTheStart()
{
    const WalkedFolderRef start = WalkedFolderRef::start({});
    const WalkedFolderRef a = start.child("a\xff", {});
    const WalkedFolderRef b = a.child("b", {});
    QCOMPARE(start->pathTo(""), QByteArray());
    QCOMPARE(start->pathTo("file"), QByteArray("file"));
    QCOMPARE(a->pathTo(""), QByteArray("a\xff"));
    QCOMPARE(b->pathTo(""), QByteArray("a\xff/b"));
    QCOMPARE(b->pathTo("two\nlines"), QByteArray("a\xff/b/two\nlines"));
}

void TestWalkedFolder::keepsTheFoldersAboveAlive()
{
    FileStatus status;
    status.owner = 7;
    status.permissions = 0751;
    WalkedFolderRef lowest;
    {
        const WalkedFolderRef start = WalkedFolderRef::start(status);
        const WalkedFolderRef middle = start.child("middle", {});
        lowest = middle.child("lowest", {});
    }
    QCOMPARE(lowest->pathTo(""), QByteArray("middle/lowest"));
    QCOMPARE(lowest->parent()->parent()->owner(), 7U);
    QCOMPARE(lowest->parent()->parent()->permissions(), std::uint16_t(0751));
    QVERIFY(lowest->parent()->parent()->parent() == nullptr);
}

void TestWalkedFolder::letsGoOfALongChain()
{
    constexpr int kLevels = 1'000'000;
    WalkedFolderRef lowest = WalkedFolderRef::start({});
    for (int level = 0; level < kLevels; ++level)
        lowest = lowest.child("l", {});
    QCOMPARE(lowest->pathTo("").size(), 2 * kLevels - 1);
    lowest = {}; // one nested destructor per level would overflow the stack
    QVERIFY(!lowest);
}

void TestWalkedFolder::isSharedAmongThreads()
{
    const WalkedFolderRef start = WalkedFolderRef::start({});
    std::vector<std::jthread> threads;
    std::atomic<int> rightPaths = 0;
    constexpr int kThreads = 4;
    constexpr int kRounds = 1000;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&rightPaths, mine = start] {
            for (int round = 0; round < kRounds; ++round)
                rightPaths += mine.child("a", {}).child("b", {})->pathTo("c") == "a/b/c" ? 1 : 0;
        });
    }
    threads.clear();
    QCOMPARE(rightPaths.load(), kThreads * kRounds);
}

VANTOR_TEST_MAIN(TestWalkedFolder)
#include "tst_WalkedFolder.moc"
