#include "tests/platform/walk/WalkRecord.h"
#include "tests/support/calls/WatchedSystemCalls.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <sys/resource.h>

namespace {

constexpr int kLevels = 3000;
constexpr int kFewerLevels = 300;

/// Lets the process open only a few files, as long as this object lives.
class FewDescriptors final
{
public:
    FewDescriptors()
    {
        constexpr rlim_t kDescriptors = 40;
        m_isSet = ::getrlimit(RLIMIT_NOFILE, &m_before) == 0;
        const rlimit few{kDescriptors, m_before.rlim_max};
        m_isSet = m_isSet && ::setrlimit(RLIMIT_NOFILE, &few) == 0;
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors &) = delete;
    FewDescriptors &operator=(const FewDescriptors &) = delete;

    bool isSet() const { return m_isSet; }

private:
    rlimit m_before{};
    bool m_isSet = false;
};

/// Only counts, because the paths of such a deep tree would fill the memory.
class CountingVisitor final : public DirectoryVisitor
{
public:
    int files = 0;
    int failures = 0;

    void found(const WalkedEntry &) override { ++files; }
    void failed(const WalkedFolder &, const char *, int) override { ++failures; }
};

/// The number of files that a walk finds; -1 when anything failed.
int filesBeneath(const MadeTree &tree, unsigned threads, unsigned openFolders)
{
    std::vector<CountingVisitor> visitors(threads);
    std::vector<DirectoryVisitor *> team;
    for (CountingVisitor &visitor : visitors)
        team.push_back(&visitor);
    const WatchedSystemCalls calls([](int, WatchedCall, const char *) { return 0; });
    WalkOptions options;
    options.openFolders = openFolders;
    walkDirectory(calls, tree.open({}), options, {}, team);
    int files = 0;
    for (const CountingVisitor &visitor : visitors)
        files = visitor.failures > 0 || files < 0 ? -1 : files + visitor.files;
    return files;
}

} // namespace

/// How a walk goes down, and back up, with a limited number of open folders.
class TestDirectoryWalkerDepth final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goesDeeperThanAnyPath();
    void walksThousandsOfLevelsWithFewDescriptors();
    void climbsOnlyToWhatStillWaits();
    void goesOnWhenDescriptorsRunOut();
    void tellsWhenThereAreNoDescriptorsAtAll();
    void doesNotClimbIntoAForeignFolder();
    void tellsWhenTheWayBackFails_data();
    void tellsWhenTheWayBackFails();
};

void TestDirectoryWalkerDepth::goesDeeperThanAnyPath()
{
    const MadeTree tree;
    const QByteArray last = tree.makeChain({}, QByteArray(200, 'n'), 60);
    tree.makeFile(last + "/file");
    QVERIFY(last.size() > 2 * PATH_MAX);
    QCOMPARE(RecordedWalk(tree).run().found, QByteArrayList{last + "/file"});
}

void TestDirectoryWalkerDepth::walksThousandsOfLevelsWithFewDescriptors()
{
    const MadeTree tree;
    tree.makeChain({}, "level", kLevels, "beside");
    // A second way down, in which the chain of folders waits.
    tree.makeChain("beside", "level", kFewerLevels, "z");
    const FewDescriptors few;
    QVERIFY(few.isSet());
    for (const unsigned threads : {1U, 2U, 4U})
        QCOMPARE(filesBeneath(tree, threads, 8), kLevels + kFewerLevels);
    // The walk may hold more descriptors than the system gives: at the limit it closes what it can.
    QCOMPARE(filesBeneath(tree, 1, 1000), kLevels + kFewerLevels);
}

void TestDirectoryWalkerDepth::climbsOnlyToWhatStillWaits()
{
    const MadeTree tree;
    const QByteArray last = tree.makeChain({}, "level", 100);
    tree.makeFile(last + "/file");
    int climbs = 0;
    const WatchedSystemCalls calls([&](int, WatchedCall call, const char *) {
        climbs += call == WatchedCall::OpenParent ? 1 : 0;
        return 0;
    });
    RecordedWalk walk(tree);
    walk.calls = calls;
    walk.options.openFolders = 4;
    QCOMPARE(walk.run().found.size(), 1);
    QCOMPARE(climbs, 0);
}

void TestDirectoryWalkerDepth::goesOnWhenDescriptorsRunOut()
{
    const MadeTree tree;
    constexpr int kDepth = 30;
    tree.makeChain({}, "level", kDepth, "beside");
    int opened = 0;
    const WatchedSystemCalls calls([&](int, WatchedCall call, const char *) {
        constexpr int kEvery = 5; // no other thread closes any: each try after the first succeeds
        return call == WatchedCall::OpenFolder && ++opened % kEvery == 0 ? EMFILE : 0;
    });
    RecordedWalk walk(tree);
    walk.calls = calls;
    const WalkRecord record = walk.run();
    QCOMPARE(record.failed, QByteArrayList());
    QCOMPARE(record.found.size(), kDepth);
}

void TestDirectoryWalkerDepth::tellsWhenThereAreNoDescriptorsAtAll()
{
    const MadeTree tree;
    tree.makeFolder("a");
    tree.makeFolder("b");
    tree.makeFile("file");
    const WatchedSystemCalls calls([](int, WatchedCall call, const char *) {
        return call == WatchedCall::OpenFolder ? EMFILE : 0;
    });
    RecordedWalk walk(tree);
    walk.calls = calls;
    const WalkRecord record = walk.run();
    QCOMPARE(record.failed, (QByteArrayList{"a: 24", "b: 24"}));
    QCOMPARE(record.found, QByteArrayList{"file"});
}

void TestDirectoryWalkerDepth::doesNotClimbIntoAForeignFolder()
{
    const MadeTree tree;
    tree.makeFolder("start");
    tree.makeChain("start", "level", 6, "beside");
    tree.makeFolder("elsewhere");
    tree.makeFolder("elsewhere/beside");
    tree.makeFile("elsewhere/beside/foreign");

    // Moves every folder of the chain. So whichever folder the walk is about to leave, its former
    // parent is no longer above it.
    bool isMoved = false;
    const WatchedSystemCalls calls([&](int, WatchedCall call, const char *) {
        if (call == WatchedCall::OpenParent && !std::exchange(isMoved, true)) {
            for (QByteArray level = "start/level/level/level/level"; level != "start";
                 level.chop(6))
                tree.rename(level, "elsewhere/level" + QByteArray::number(level.size()));
        }
        return 0;
    });
    RecordedWalk walk(tree);
    walk.calls = calls;
    walk.options.openFolders = 2;
    const WalkRecord record = walk.run("start");
    QVERIFY(isMoved);
    QVERIFY(!record.failed.isEmpty());
    for (const QByteArray &failure : record.failed)
        QVERIFY(failure.endsWith(": " + QByteArray::number(ESTALE)));
    for (const QByteArray &path : record.found)
        QVERIFY(path.endsWith("beside/file"));
}

void TestDirectoryWalkerDepth::tellsWhenTheWayBackFails_data()
{
    QTest::addColumn<int>("failing");
    QTest::addRow("the folder above cannot be opened") << int(WatchedCall::OpenParent);
    QTest::addRow("what it is cannot be told") << int(WatchedCall::StatusOf);
}

void TestDirectoryWalkerDepth::tellsWhenTheWayBackFails()
{
    QFETCH(int, failing);
    const MadeTree tree;
    constexpr int kDepth = 6;
    tree.makeChain({}, "level", kDepth, "beside");
    bool isClimbing = false;
    const WatchedSystemCalls calls([&](int, WatchedCall call, const char *) {
        isClimbing = isClimbing || call == WatchedCall::OpenParent;
        return isClimbing && int(call) == failing ? EIO : 0;
    });
    RecordedWalk walk(tree);
    walk.calls = calls;
    walk.options.openFolders = 2;
    const WalkRecord record = walk.run();
    QVERIFY(isClimbing);
    QVERIFY(!record.failed.isEmpty());
    QVERIFY(record.found.size() < kDepth);
    for (const QByteArray &failure : record.failed)
        QVERIFY(failure.endsWith(": 5"));
}

VANTOR_TEST_MAIN(TestDirectoryWalkerDepth)
#include "tst_DirectoryWalkerDepth.moc"
