#include "platform/system/HostSystemCalls.h"
#include "slices/sizing/FolderSizing.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/disk/OwnMounts.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <cstdio>

namespace {

/// Makes a cleaning believe that everything lies in memory, so that it works on one thread: the
/// child of a process with several threads must start none.
class OneThreadCalls final : public HookedCalls
{
public:
    bool isForOneThread(int) const override { return true; }
};

FolderSize measured(const AnchoredPath &location)
{
    return measureFolder(hostSystemCalls(), location, {}, 1);
}

/// "promised B" when the location measures B bytes; a location whose figure is not final says so.
QByteArray promise(const FolderSize &size)
{
    const QByteArray text = "promised " + QByteArray::number(size.bytes);
    return size.isComplete ? text : text + ", incomplete";
}

/// What the files named hold together, as far as they still exist.
qint64 bytesIn(const MadeTree &tree, const QByteArrayList &files)
{
    qint64 bytes = 0;
    for (const QByteArray &file : files) {
        struct stat found
        {
        };
        if (::lstat(tree.path(file).constData(), &found) == 0)
            bytes += found.st_size;
    }
    return bytes;
}

/// "promised B, freed B": what a slice's location in the granted folder measures, and what of the
/// files named a cleaning of it then takes away.
QByteArray promisedAndFreed(const MadeTree &tree, const QByteArray &granted,
                            const QByteArray &location, const QByteArrayList &files)
{
    const LogRecorder silenced;
    const GrantedFolder home(tree.path(granted));
    const FileUrl url = home.folder(location);
    const QByteArray promised = promise(measured(*home.anchoredPath(url)));
    const qint64 before = bytesIn(tree, files);
    clean(home, {contentsOf({url})}, {}, OneThreadCalls());
    return promised + ", freed " + QByteArray::number(before - bytesIn(tree, files));
}

} // namespace

/// What lies on another file system is never cleaned, so it must not be promised.
class TestFolderSizingMounts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void promisesNothingOfAPlaceThatIsAMount_data();
    void promisesNothingOfAPlaceThatIsAMount();
    void promisesNothingOfAPlaceBeyondAMount_data();
    void promisesNothingOfAPlaceBeyondAMount();
    void leavesMountsInsideAPlaceOut();
    void leavesOutWhatSomethingIsMountedOn();
    void promisesAllOfAGrantedFolderThatIsAMount();
    void findsNothingOnAReadOnlyMount();

private:
    /// What a child process with mounts of its own reports.
    static QByteArray amongOwnMounts(MadeTree &tree,
                                     const std::function<QByteArray(const OwnMounts &)> &piece);
};

QByteArray
TestFolderSizingMounts::amongOwnMounts(MadeTree &tree,
                                       const std::function<QByteArray(const OwnMounts &)> &piece)
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [&] {
        const OwnMounts mounts(tree);
        const QByteArray words = piece(mounts);
        std::fputs(words.constData(), stderr);
        return mounts.areMade() ? 0 : 1;
    });
    return outcome.exitCode == 0 ? outcome.errorText : "failed: " + outcome.errorText;
}

void TestFolderSizingMounts::promisesNothingOfAPlaceThatIsAMount_data()
{
    QTest::addColumn<bool>("isForOneThread");
    QTest::addRow("another file system") << true;
    QTest::addRow("the same file system once more") << false;
}

void TestFolderSizingMounts::promisesNothingOfAPlaceThatIsAMount()
{
    QFETCH(bool, isForOneThread);
    MadeTree tree;
    tree.makeFolder("elsewhere");
    tree.makeFolder("home");
    tree.makeFolder("home/Downloads");
    const QByteArray words = amongOwnMounts(tree, [&](const OwnMounts &mounts) {
        if (isForOneThread)
            mounts.mountMemory("home/Downloads");
        else
            mounts.bind("elsewhere", "home/Downloads");
        tree.makeFile("home/Downloads/file", 10);
        return promisedAndFreed(tree, "home", "Downloads", {"home/Downloads/file"});
    });
    QCOMPARE(words, QByteArray("promised 0, freed 0"));
}

void TestFolderSizingMounts::promisesNothingOfAPlaceBeyondAMount_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addRow("folder") << QByteArray("Library/Caches");
    QTest::addRow("file") << QByteArray("Library/Caches/file");
    QTest::addRow("nothing") << QByteArray("Library/Logs");
}

void TestFolderSizingMounts::promisesNothingOfAPlaceBeyondAMount()
{
    QFETCH(QByteArray, location);
    MadeTree tree;
    tree.makeFolder("home");
    tree.makeFolder("home/Library");
    const QByteArray words = amongOwnMounts(tree, [&](const OwnMounts &mounts) {
        mounts.mountMemory("home/Library");
        tree.makeFolder("home/Library/Caches");
        tree.makeFile("home/Library/Caches/file", 10);
        return promisedAndFreed(tree, "home", location, {"home/Library/Caches/file"});
    });
    QCOMPARE(words, QByteArray("promised 0, freed 0"));
}

void TestFolderSizingMounts::leavesMountsInsideAPlaceOut()
{
    MadeTree tree;
    tree.makeFolder("elsewhere");
    tree.makeFile("elsewhere/file", 1000);
    tree.makeFolder("home");
    tree.makeFolder("home/Downloads");
    tree.makeFile("home/Downloads/file", 1);
    tree.makeFolder("home/Downloads/same");
    tree.makeFolder("home/Downloads/deep");
    tree.makeFile("home/Downloads/deep/file", 20);
    tree.makeFolder("home/Downloads/deep/other");
    const QByteArray words = amongOwnMounts(tree, [&](const OwnMounts &mounts) {
        mounts.bind("elsewhere", "home/Downloads/same");
        mounts.mountMemory("home/Downloads/deep/other");
        tree.makeFile("home/Downloads/deep/other/file", 300);
        return promisedAndFreed(tree, "home", "Downloads",
                                {"home/Downloads/file", "home/Downloads/same/file",
                                 "home/Downloads/deep/file", "home/Downloads/deep/other/file"});
    });
    QCOMPARE(words, QByteArray("promised 21, freed 21"));
    QVERIFY(exists(tree.path("elsewhere/file")));
}

void TestFolderSizingMounts::leavesOutWhatSomethingIsMountedOn()
{
    MadeTree tree;
    tree.makeFile("large", 1000);
    tree.makeFolder("home");
    tree.makeFolder("home/Downloads");
    tree.makeFile("home/Downloads/under", 10);
    tree.makeFile("home/Downloads/file", 1);
    const QByteArray words = amongOwnMounts(tree, [&](const OwnMounts &mounts) {
        mounts.bind("large", "home/Downloads/under");
        return promisedAndFreed(tree, "home", "Downloads",
                                {"home/Downloads/under", "home/Downloads/file"});
    });
    QCOMPARE(words, QByteArray("promised 1, freed 1"));
    QVERIFY(exists(tree.path("large")));
}

void TestFolderSizingMounts::promisesAllOfAGrantedFolderThatIsAMount()
{
    MadeTree tree;
    tree.makeFolder("home");
    const QByteArray words = amongOwnMounts(tree, [&](const OwnMounts &mounts) {
        mounts.mountMemory("home");
        tree.makeFolder("home/Downloads");
        tree.makeFile("home/Downloads/file", 10);
        return promisedAndFreed(tree, "home", "Downloads", {"home/Downloads/file"});
    });
    QCOMPARE(words, QByteArray("promised 10, freed 10"));
}

void TestFolderSizingMounts::findsNothingOnAReadOnlyMount()
{
    MadeTree tree;
    tree.makeFolder("folder");
    tree.makeFolder("folder/Downloads");
    tree.makeFile("folder/Downloads/file", 1000);
    tree.makeFolder("home");
    const QByteArray words = amongOwnMounts(tree, [&](const OwnMounts &mounts) {
        mounts.bindReadOnly("folder", "home");
        const GrantedFolder home(tree.path("home"));
        const FolderSize file = measured(*home.anchoredPath(home.file("Downloads/file")));
        return promise(measured(*home.anchoredPath(home.folder("Downloads")))) + ", " +
               promise(file) + (file.item && !file.item->isDeletable ? ", held" : ", free");
    });
    QCOMPARE(words, QByteArray("promised 0, promised 0, held"));
}

VANTOR_TEST_MAIN(TestFolderSizingMounts)
#include "tst_FolderSizingMounts.moc"
