#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "tests/platform/walk/WalkRecord.h"
#include "tests/support/calls/PoorListing.h"
#include "tests/support/calls/ShortListing.h"
#include "tests/support/calls/WatchedSystemCalls.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

class TestDirectoryWalker final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsEverythingBeneath_data();
    void findsEverythingBeneath();
    void tellsTheStatusOfWhatItFinds();
    void keepsNamesOfAnyBytes();
    void passesHiddenItemsOverOrNot();
    void startsInAHiddenFolder();
    void entersOnlyWhatTheVisitorWants();
    void asksForNoStatusWhereNamesAreEnough();
    void asksForEachStatusOnce();
    void findsEverythingHoweverLittleIsListed_data();
    void findsEverythingHoweverLittleIsListed();
    void listsAgainOnlyWhatMayGoOn_data();
    void listsAgainOnlyWhatMayGoOn();
    void learnsKindsFromTheStatusWhereTheFolderDoesNotSay();
    void toleratesWhatVanishes_data();
    void toleratesWhatVanishes();
    void tellsOfFailuresAndGoesOn_data();
    void tellsOfFailuresAndGoesOn();
    void tellsOfAStartThatCannotBeRead();
};

void TestDirectoryWalker::findsEverythingBeneath_data()
{
    QTest::addColumn<unsigned>("threads");
    QTest::addRow("one thread") << 1U;
    QTest::addRow("two threads") << 2U;
    QTest::addRow("four threads") << 4U;
}

void TestDirectoryWalker::findsEverythingBeneath()
{
    QFETCH(unsigned, threads);
    const MadeTree tree;
    QByteArrayList files;
    QByteArrayList folders{""};
    for (const char *folder : {"a", "a/b", "a/b/c", "d", "empty"}) {
        tree.makeFolder(folder);
        folders.append(folder);
    }
    for (const char *file : {"1", "2", "a/1", "a/b/1", "a/b/2", "a/b/c/1", "d/1", "d/2", "d/3"}) {
        tree.makeFile(file);
        files.append(file);
    }
    tree.makePipe("d/pipe");
    files.append("d/pipe");

    const WalkRecord record = RecordedWalk(tree, threads).run();
    QCOMPARE(record.found, sorted(files));
    QCOMPARE(record.entered, sorted(folders));
    QCOMPARE(record.failed, QByteArrayList());
}

void TestDirectoryWalker::tellsTheStatusOfWhatItFinds()
{
    const MadeTree tree;
    tree.makeFile("file", 12345);
    RecordedWalk walk(tree);
    std::vector<FileStatus> statuses;
    walk.visitor().onFound = [&](const WalkedEntry &entry) { statuses.push_back(*entry.status); };
    walk.run();
    QCOMPARE(statuses.size(), std::size_t(1));
    QCOMPARE(statuses[0].kind, FileKind::Regular);
    QCOMPARE(statuses[0].size, std::uint64_t(12345));
}

void TestDirectoryWalker::keepsNamesOfAnyBytes()
{
    const MadeTree tree;
    const QByteArrayList names{"two\nlines", "a\xff", "\xff\xfe", QByteArray(255, '\xe9'),
                               "blank ed",   "100%",  "-rf",      "\xc3\xa4",
                               "a\xcc\x88"};
    QByteArrayList files;
    for (const QByteArray &name : names) {
        tree.makeFolder(name);
        tree.makeFile(name + '/' + name);
        files.append(name + '/' + name);
    }
    QCOMPARE(RecordedWalk(tree).run().found, sorted(files));
}

void TestDirectoryWalker::passesHiddenItemsOverOrNot()
{
    const MadeTree tree;
    tree.makeFolder(".folder");
    tree.makeFile(".folder/file");
    tree.makeFile(".file");
    tree.makeFile("..twice");
    tree.makeFile("file.");

    QCOMPARE(RecordedWalk(tree).run().found, QByteArrayList{"file."});
    RecordedWalk walk(tree);
    walk.options.hiddenItems = HiddenItems::Included;
    QCOMPARE(walk.run().found, sorted({"..twice", ".file", ".folder/file", "file."}));
}

void TestDirectoryWalker::startsInAHiddenFolder()
{
    const MadeTree tree;
    tree.makeFolder(".trash");
    tree.makeFile(".trash/file");
    QCOMPARE(RecordedWalk(tree).run(".trash").found, QByteArrayList{"file"});
}

void TestDirectoryWalker::entersOnlyWhatTheVisitorWants()
{
    const MadeTree tree;
    tree.makeFolder("Films.app");
    tree.makeFolder("Films.app/Contents");
    tree.makeFile("Films.app/film");
    tree.makeFolder("Films");
    tree.makeFile("Films/film");
    RecordedWalk walk(tree);
    walk.visitor().entersFolder = [](const QByteArray &path) { return !path.endsWith(".app"); };
    const WalkRecord record = walk.run();
    QCOMPARE(record.found, QByteArrayList{"Films/film"});
    QCOMPARE(record.entered, (QByteArrayList{"", "Films"}));
}

void TestDirectoryWalker::asksForNoStatusWhereNamesAreEnough()
{
    const MadeTree tree;
    tree.makeFolder("plain");
    tree.makeFile("plain/file", 7);
    tree.makeFolder("plain/full");
    tree.makeFile("plain/full/file", 7);
    QByteArrayList asked;
    const WatchedSystemCalls calls([&](int, WatchedCall call, const char *name) {
        if (call == WatchedCall::Status)
            asked.append(name);
        return 0;
    });
    RecordedWalk walk(tree);
    walk.calls = calls;
    walk.visitor().detailOf = [](const QByteArray &path) {
        return path == "plain/full" ? EntryDetail::Status : EntryDetail::NameAlone;
    };
    QByteArrayList withStatus;
    walk.visitor().onFound = [&](const WalkedEntry &entry) {
        if (entry.status)
            withStatus.append(entry.folder.pathTo(entry.name));
    };
    QCOMPARE(walk.run().found, (QByteArrayList{"plain/file", "plain/full/file"}));
    QCOMPARE(withStatus, QByteArrayList{"plain/full/file"});
    QCOMPARE(asked, QByteArrayList{"file"});
}

void TestDirectoryWalker::asksForEachStatusOnce()
{
    const MadeTree tree;
    constexpr int kFiles = 20;
    for (int i = 0; i < kFiles; ++i)
        tree.makeFile("file" + QByteArray::number(i));
    tree.makeFolder("folder");
    int byName = 0;
    int byDescriptor = 0;
    const WatchedSystemCalls calls([&](int, WatchedCall call, const char *) {
        byName += call == WatchedCall::Status ? 1 : 0;
        byDescriptor += call == WatchedCall::StatusOf ? 1 : 0;
        return 0;
    });
    RecordedWalk walk(tree);
    walk.calls = calls;
    walk.run();
    QCOMPARE(byName, kFiles);
    QCOMPARE(byDescriptor, 2); // the start and its one folder
}

void TestDirectoryWalker::findsEverythingHoweverLittleIsListed_data()
{
    QTest::addColumn<std::size_t>("bytesAtATime");
    QTest::addRow("one entry or two") << std::size_t(100);
    QTest::addRow("some") << std::size_t(1000);
}

void TestDirectoryWalker::findsEverythingHoweverLittleIsListed()
{
    QFETCH(std::size_t, bytesAtATime);
    const MadeTree tree;
    QByteArrayList files;
    constexpr int kFiles = 50;
    for (int i = 0; i < kFiles; ++i) {
        files.append(QByteArray::number(i));
        tree.makeFile(files.last());
    }
    const ShortListing calls(bytesAtATime);
    RecordedWalk walk(tree);
    walk.calls = calls;
    QCOMPARE(walk.run().found, sorted(files));
}

void TestDirectoryWalker::listsAgainOnlyWhatMayGoOn_data()
{
    QTest::addColumn<int>("files");
    QTest::addColumn<int>("listings");
    constexpr int kFull = 32768 / 280; // entries of the longest names that a listing takes
    QTest::addRow("nothing") << 0 << 1;
    QTest::addRow("a few") << 3 << 1;
    QTest::addRow("as many as surely leave room for one more") << kFull - 2 << 1;
    QTest::addRow("as many as fit") << kFull << 2;
    QTest::addRow("more than fit") << kFull + 20 << 2;
    QTest::addRow("twice as many") << 2 * kFull << 3;
}

void TestDirectoryWalker::listsAgainOnlyWhatMayGoOn()
{
    QFETCH(int, files);
    const MadeTree tree;
    constexpr int kLongestName = 255;
    for (int i = 0; i < files; ++i)
        tree.makeFile(QByteArray::number(i).rightJustified(kLongestName, 'n'));
    int listings = 0;
    WatchedSystemCalls calls([&](int, WatchedCall call, const char *) {
        listings += call == WatchedCall::ReadEntries ? 1 : 0;
        return 0;
    });
    calls.setTraits({true, false});
    RecordedWalk walk(tree);
    walk.calls = calls;
    QCOMPARE(walk.run().found.size(), files);
    QTEST(listings, "listings");
}

void TestDirectoryWalker::learnsKindsFromTheStatusWhereTheFolderDoesNotSay()
{
    const MadeTree tree;
    tree.makeFolder("folder");
    tree.makeFile("folder/file", 1);
    tree.makeLink("folder/link", "file");
    const PoorListing calls;
    RecordedWalk walk(tree);
    walk.calls = calls;
    QCOMPARE(walk.run().found, (QByteArrayList{"folder/file", "folder/link"}));

    RecordedWalk namesOnly(tree);
    namesOnly.calls = calls;
    namesOnly.visitor().detailOf = [](const QByteArray &) { return EntryDetail::NameAlone; };
    const WalkRecord record = namesOnly.run();
    QCOMPARE(record.found, (QByteArrayList{"folder/file", "folder/link"}));
    QCOMPARE(record.entered, (QByteArrayList{"", "folder"}));
}

void TestDirectoryWalker::toleratesWhatVanishes_data()
{
    QTest::addColumn<QByteArray>("gone");
    QTest::addColumn<QByteArray>("madeInstead");
    QTest::addRow("a file") << QByteArray("file") << QByteArray();
    QTest::addRow("a folder") << QByteArray("folder") << QByteArray();
    QTest::addRow("a folder becomes a file") << QByteArray("folder") << QByteArray("file");
    QTest::addRow("a folder becomes a link") << QByteArray("folder") << QByteArray("link");
}

void TestDirectoryWalker::toleratesWhatVanishes()
{
    QFETCH(QByteArray, gone);
    QFETCH(QByteArray, madeInstead);
    const MadeTree tree;
    tree.makeFile("file");
    tree.makeFolder("folder");
    tree.makeFile("stays");
    const WatchedSystemCalls calls([&](int, WatchedCall, const char *name) {
        if (name == gone) {
            tree.remove(gone);
            if (madeInstead == "file")
                tree.makeFile(gone);
            if (madeInstead == "link")
                tree.makeLink(gone, "/");
        }
        return 0;
    });
    RecordedWalk walk(tree);
    walk.calls = calls;
    const WalkRecord record = walk.run();
    QCOMPARE(record.failed, QByteArrayList());
    QVERIFY(record.found.contains("stays"));
    QVERIFY(!record.found.contains(gone));
    QVERIFY(!record.entered.contains(gone));
}

void TestDirectoryWalker::tellsOfFailuresAndGoesOn_data()
{
    QTest::addColumn<int>("failing");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("error");
    QTest::addColumn<QByteArrayList>("told");
    QTest::addRow("status of an entry")
        << int(WatchedCall::Status) << QByteArray("bad") << EIO << QByteArrayList{"folder/bad: 5"};
    QTest::addRow("opening a folder") << int(WatchedCall::OpenFolder) << QByteArray("folder") << EIO
                                      << QByteArrayList{"folder: 5"};
    QTest::addRow("opening a folder of others")
        << int(WatchedCall::OpenFolder) << QByteArray("folder") << EACCES
        << QByteArrayList{"folder: 13"};
    QTest::addRow("status of a folder")
        << int(WatchedCall::StatusOf) << QByteArray() << EIO << QByteArrayList{"folder: 5"};
    QTest::addRow("listing a folder")
        << int(WatchedCall::ReadEntries) << QByteArray() << EIO << QByteArrayList{"folder: 5"};
}

void TestDirectoryWalker::tellsOfFailuresAndGoesOn()
{
    QFETCH(int, failing);
    QFETCH(QByteArray, name);
    QFETCH(int, error);
    const MadeTree tree;
    tree.makeFolder("folder");
    tree.makeFile("folder/bad");
    tree.makeFolder("other");
    tree.makeFile("other/good");
    bool isInFolder = false;
    const WatchedSystemCalls calls([&](int, WatchedCall call, const char *of) {
        if (call == WatchedCall::OpenFolder)
            isInFolder = qstrcmp(of, "folder") == 0;
        return isInFolder && int(call) == failing && name == of ? error : 0;
    });
    RecordedWalk walk(tree);
    walk.calls = calls;
    const WalkRecord record = walk.run();
    QTEST(record.failed, "told");
    QVERIFY(record.found.contains("other/good"));
}

void TestDirectoryWalker::tellsOfAStartThatCannotBeRead()
{
    const MadeTree tree;
    tree.makeFile("file");
    const WatchedSystemCalls calls(
        [](int number, WatchedCall, const char *) { return number == 0 ? EACCES : 0; });
    RecordedWalk walk(tree);
    walk.calls = calls;
    const WalkRecord record = walk.run();
    QCOMPARE(record.failed, QByteArrayList{": 13"});
    QCOMPARE(record.found, QByteArrayList());
}

VANTOR_TEST_MAIN(TestDirectoryWalker)
#include "tst_DirectoryWalker.moc"
