#include "platform/system/HostSystemCalls.h"
#include "tests/platform/walk/WalkRecord.h"
#include "tests/support/calls/SubVolume.h"
#include "tests/support/disk/OwnMounts.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

/// What a walk does not cross.
class TestDirectoryWalkerBorders final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void neverFollowsLinks();
    void staysOutOfMounts_data();
    void staysOutOfMounts();
    void startsAtAMount();
    void staysOutOfSubvolumes();
};

void TestDirectoryWalkerBorders::neverFollowsLinks()
{
    const MadeTree tree;
    tree.makeFolder("outside");
    tree.makeFile("outside/file");
    tree.makeFolder("inside");
    tree.makeLink("inside/to-folder", "../outside");
    tree.makeLink("inside/to-file", "../outside/file");
    tree.makeLink("inside/dangling", "nowhere");
    tree.makeLink("inside/loop", "loop");
    tree.makeLink("inside/up", "..");
    tree.makeLink("inside/self", ".");
    const WalkRecord record = RecordedWalk(tree, 2).run("inside");
    QCOMPARE(record.found, sorted({"to-folder", "to-file", "dangling", "loop", "up", "self"}));
    QCOMPARE(record.entered, QByteArrayList{""});
    QCOMPARE(record.failed, QByteArrayList());
}

void TestDirectoryWalkerBorders::staysOutOfMounts_data()
{
    QTest::addColumn<bool>("isInMemory");
    QTest::addRow("another file system") << true;
    QTest::addRow("the same file system once more") << false;
}

void TestDirectoryWalkerBorders::staysOutOfMounts()
{
    QFETCH(bool, isInMemory);
    MadeTree tree;
    tree.makeFolder("outside");
    tree.makeFile("outside/film");
    tree.makeFolder("start");
    tree.makeFolder("start/mount");
    tree.makeFile("start/file");

    const ChildOutcome outcome = runInChild(ChildUser::Same, [&] {
        const OwnMounts mounts(tree);
        if (isInMemory)
            mounts.mountMemory("start/mount");
        else
            mounts.bind("outside", "start/mount");
        if (isInMemory)
            tree.makeFile("start/mount/in-memory");
        const WalkRecord record = RecordedWalk(tree).run("start");
        const bool isRight = record.entered == QByteArrayList{""} && record.failed.isEmpty() &&
                             record.found == QByteArrayList{"file"};
        return mounts.areMade() && isRight ? 0 : 1;
    });
    QCOMPARE(outcome.errorText, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void TestDirectoryWalkerBorders::startsAtAMount()
{
    MadeTree tree;
    tree.makeFolder("mount");
    const ChildOutcome outcome = runInChild(ChildUser::Same, [&] {
        const OwnMounts mounts(tree);
        mounts.mountMemory("mount");
        tree.makeFolder("mount/folder");
        tree.makeFile("mount/folder/file");
        const WalkRecord record = RecordedWalk(tree).run("mount");
        return record.found == QByteArrayList{"folder/file"} ? 0 : 1;
    });
    QCOMPARE(outcome.errorText, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
}

void TestDirectoryWalkerBorders::staysOutOfSubvolumes()
{
    const MadeTree tree;
    tree.makeFolder("volume");
    tree.makeFile("volume/file");
    tree.makeFolder("folder");
    tree.makeFile("folder/file");
    const SubVolume volume(tree.path("volume"));
    const SystemCalls &calls = volume;
    RecordedWalk walk(tree);
    walk.calls = calls;
    const WalkRecord record = walk.run();
    QCOMPARE(record.found, QByteArrayList{"folder/file"});
    QCOMPARE(record.failed, QByteArrayList());
}

VANTOR_TEST_MAIN(TestDirectoryWalkerBorders)
#include "tst_DirectoryWalkerBorders.moc"
