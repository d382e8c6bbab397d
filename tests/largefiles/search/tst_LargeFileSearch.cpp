#include "platform/system/HostSystemCalls.h"
#include "tests/largefiles/search/SearchKit.h"
#include "tests/support/calls/WatchedSystemCalls.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

const QByteArrayList kAllFolders{"Desktop", "Documents", "Downloads", "Dropbox", "Movies",
                                 "Music",   "Pictures",  "Public",    "Sites"};

SearchOutcome search(const MadeTree &home, LargeFileListener &listener,
                     const QStringList &excluded = {}, unsigned threads = 1,
                     const SystemCalls &calls = hostSystemCalls())
{
    HomeAccess access(home);
    return searchLargeFiles(calls, access, {searchURLs(homeUrl(home)), excluded, {}}, listener, {},
                            threads);
}

QByteArrayList found(const MadeTree &home, const QStringList &excluded = {}, unsigned threads = 1)
{
    SearchRecord record(home);
    search(home, record, excluded, threads);
    return sorted(record.files);
}

/// The system with every listing in the order of the names.
WatchedSystemCalls orderedCalls()
{
    return WatchedSystemCalls([](int, WatchedCall, const char *) { return 0; });
}

QString textOf(const MadeTree &home, const QByteArray &relativePath)
{
    return QString::fromLatin1(fileIn(home, relativePath).absoluteString());
}

} // namespace

class TestLargeFileSearch final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsFilesAbove100MB_data();
    void listsFilesAbove100MB();
    void tellsSizeAndText();
    void searchesTheFoldersInOrder();
    void searchesTheFoldersThatTheHomeNames();
    void passesMissingFoldersOverInSilence();
    void looksNowhereElse();
    void entersNeitherHiddenFoldersNorPackages();
    void followsNoLinks();
    void searchesNoFolderThatIsALink();
    void leavesOutWhatContainsAnExcludedText_data();
    void leavesOutWhatContainsAnExcludedText();
    void doesNotLookIntoExcludedFolders();
    void leavesOutWhatIsListed();
    void keepsTheOrderOfDiscovery();
    void findsTheSameWithAnyNumberOfThreads();
    void findsNamesOfAnyBytes();
    void findsFilesDeeperThanAnyPath();
    void holdsOneAccess();
    void isNotCompleteWhenItWasStopped();
    void reportsFoldersOutsideTheGrant();
    void countsTheItemsLookedAt();
};

void TestLargeFileSearch::listsFilesAbove100MB_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("isListed");
    QTest::addRow("empty") << qint64(0) << false;
    QTest::addRow("100 MB") << qint64(100'000'000) << false;
    QTest::addRow("one byte more") << qint64(100'000'001) << true;
    QTest::addRow("1 TB") << qint64(1'000'000'000'000) << true;
}

void TestLargeFileSearch::listsFilesAbove100MB()
{
    QFETCH(qint64, size);
    QFETCH(bool, isListed);
    const MadeTree home;
    home.makeFolder("Movies");
    home.makeFile("Movies/a", size);
    QCOMPARE(found(home), isListed ? QByteArrayList{"Movies/a"} : QByteArrayList{});
}

void TestLargeFileSearch::tellsSizeAndText()
{
    const MadeTree home;
    home.makeFolder("Movies");
    home.makeFile("Movies/a b.mov", 1'230'000'000);
    SearchRecord record(home);
    QVERIFY(search(home, record).isComplete);
    QCOMPARE(record.records.size(), 1);
    const File &file = record.records.first();
    QVERIFY(file.fileURL() == fileIn(home, "Movies/a b.mov"));
    QCOMPARE(file.size(), 1'230'000'000);
    QCOMPARE(file.sizeString().value(), QStringLiteral("1.23 GB"));
    QVERIFY(!file.isAdded());
}

void TestLargeFileSearch::searchesTheFoldersInOrder()
{
    const MadeTree home;
    QByteArrayList files;
    for (const QByteArray &folder : kAllFolders) {
        home.makeFolder(folder);
        home.makeFile(folder + "/file", kLarge);
        files.append(folder + "/file");
    }
    SearchRecord record(home);
    search(home, record);
    QCOMPARE(record.folders, kAllFolders);
    QCOMPARE(record.files, files);
}

void TestLargeFileSearch::searchesTheFoldersThatTheHomeNames()
{
    const FileUrl home = FileUrl::fromPath("/home/anna", FileUrlKind::Folder);
    const FileUrls named{home.appending("Dokumente", FileUrlKind::Folder),
                         home.appending("Bilder", FileUrlKind::Folder)};
    HomeLayout::Findings findings;
    findings.searchFolders = named;
    QCOMPARE(searchURLs(HomeLayout::freedesktop(home, findings)), named);
    QCOMPARE(searchURLs(HomeLayout::withLibrary(home)), searchURLs(home));
}

void TestLargeFileSearch::passesMissingFoldersOverInSilence()
{
    const MadeTree home;
    QByteArrayList present = kAllFolders;
    present.removeOne("Dropbox");
    for (const QByteArray &folder : std::as_const(present))
        home.makeFolder(folder);
    const LogRecorder log;
    SearchRecord record(home);
    QVERIFY(search(home, record).isComplete);
    QCOMPARE(record.folders, present);
    QCOMPARE(record.failures, QByteArrayList());
    QCOMPARE(log.lines(), QStringList());
}

void TestLargeFileSearch::looksNowhereElse()
{
    const MadeTree home;
    make(home, {"Library/", "Library/a", "Movies2/", "Movies2/a", "a", "Movies/", "Movies/a"});
    QCOMPARE(found(home), QByteArrayList{"Movies/a"});
}

void TestLargeFileSearch::entersNeitherHiddenFoldersNorPackages()
{
    const MadeTree home;
    make(home, {"Music/", "Music/.hidden", "Music/.folder/", "Music/.folder/a", "Music/Player.app/",
                "Music/Player.app/a", "Music/Player.app/Contents/", "Music/Player.app/Contents/a",
                "Music/UPPER.APP/", "Music/UPPER.APP/a", "Music/file.app", "Music/folder/",
                "Music/folder/deep.bundle/", "Music/folder/deep.bundle/a", "Music/folder/a"});
    QCOMPARE(found(home), (QByteArrayList{"Music/file.app", "Music/folder/a"}));
}

void TestLargeFileSearch::followsNoLinks()
{
    const MadeTree home;
    make(home, {"outside/", "outside/a", "Movies/", "Movies/b"});
    home.makeLink("Movies/folder", "../outside");
    home.makeLink("Movies/file", "../outside/a");
    home.makeLink("Movies/loop", ".");
    home.makePipe("Movies/pipe");
    QCOMPARE(found(home), QByteArrayList{"Movies/b"});
}

void TestLargeFileSearch::searchesNoFolderThatIsALink()
{
    const MadeTree home;
    make(home, {"outside/", "outside/a", "Music/", "Music/b"});
    home.makeLink("Movies", "outside");
    home.makeLink("Dropbox", "nowhere");
    SearchRecord record(home);
    QVERIFY(!search(home, record).isComplete);
    QCOMPARE(record.files, QByteArrayList{"Music/b"});
    // A link that leads nowhere counts as missing.
    QCOMPARE(record.failures, QByteArrayList{"Movies: " + QByteArray::number(ENOTDIR)});
}

void TestLargeFileSearch::leavesOutWhatContainsAnExcludedText_data()
{
    QTest::addColumn<QByteArrayList>("excluded"); // {home} stands for the home's own URL
    QTest::addColumn<QByteArrayList>("files");
    const QByteArray all = "Movies/a.mov,Movies/ab.mov,Movies/sub/a.mov,Music/a b";
    const auto row = [](const char *name, const QByteArrayList &excluded, const QByteArray &files) {
        QTest::addRow("%s", name) << excluded
                                  << (files.isEmpty() ? QByteArrayList() : files.split(','));
    };
    row("nothing", {}, all);
    row("empty text", {""}, all);
    row("folder", {"{home}/Movies/"}, "Music/a b");
    row("folder below", {"{home}/Movies/sub/"}, "Movies/a.mov,Movies/ab.mov,Music/a b");
    row("file", {"{home}/Movies/a.mov"}, "Movies/ab.mov,Movies/sub/a.mov,Music/a b");
    row("beginning of names", {"{home}/Movies/a"}, "Movies/sub/a.mov,Music/a b");
    row("folder without its slash", {"{home}/Movies"}, "Music/a b");
    row("inside of a text", {"/sub/"}, "Movies/a.mov,Movies/ab.mov,Music/a b");
    row("the whole home", {"{home}/"}, "");
    row("escaped", {"{home}/Music/a%20b"}, "Movies/a.mov,Movies/ab.mov,Movies/sub/a.mov");
    row("not escaped", {"{home}/Music/a b"}, all);
    row("other case", {"{home}/movies/"}, all);
    row("several", {"{home}/Music/", "{home}/Nowhere/", "{home}/Movies/ab"},
        "Movies/a.mov,Movies/sub/a.mov");
}

void TestLargeFileSearch::leavesOutWhatContainsAnExcludedText()
{
    QFETCH(QByteArrayList, excluded);
    const MadeTree home;
    make(home, {"Movies/", "Movies/a.mov", "Movies/ab.mov", "Movies/sub/", "Movies/sub/a.mov",
                "Music/", "Music/a b"});
    QStringList texts;
    for (QByteArray text : excluded) {
        const QByteArray homeText = homeUrl(home).absoluteString().chopped(1);
        texts.append(QString::fromLatin1(text.replace("{home}", homeText)));
    }
    QTEST(found(home, texts), "files");
}

void TestLargeFileSearch::doesNotLookIntoExcludedFolders()
{
    const MadeTree home;
    make(home, {"Movies/", "Movies/excluded/", "Movies/excluded/a", "Movies/other/"});
    int openings = 0;
    const WatchedSystemCalls calls([&](int, WatchedCall call, const char *name) {
        const bool isExcluded = QByteArray(name) == "excluded" || QByteArray(name) == "a";
        openings += isExcluded && call == WatchedCall::OpenFolder ? 1 : 0;
        return isExcluded ? EIO : 0;
    });
    SearchRecord record(home);
    QVERIFY(search(home, record, {textOf(home, "Movies/excluded") + u'/'}, 1, calls).isComplete);
    QCOMPARE(openings, 0);
    QVERIFY(!search(home, record, {}, 1, calls).isComplete);
    QCOMPARE(openings, 1);
}

void TestLargeFileSearch::leavesOutWhatIsListed()
{
    const MadeTree home;
    make(home, {"Movies/", "Movies/a", "Movies/b"});
    HomeAccess access(home);
    const auto isListed = [&](const QByteArray &path) { return path == home.path("Movies/a"); };
    SearchRecord record(home);
    searchLargeFiles(hostSystemCalls(), access, {searchURLs(homeUrl(home)), {}, isListed}, record,
                     {}, 1);
    QCOMPARE(record.files, QByteArrayList{"Movies/b"});
}

void TestLargeFileSearch::keepsTheOrderOfDiscovery()
{
    const MadeTree home;
    make(home, {"Music/", "Music/c", "Music/a", "Movies/", "Movies/b", "Movies/folder/",
                "Movies/folder/d", "Movies/z"});
    const auto calls = orderedCalls();
    SearchRecord record(home);
    search(home, record, {}, 1, calls);
    QCOMPARE(record.files,
             (QByteArrayList{"Movies/b", "Movies/z", "Movies/folder/d", "Music/a", "Music/c"}));
}

void TestLargeFileSearch::findsTheSameWithAnyNumberOfThreads()
{
    const MadeTree home;
    home.makeFolder("Documents");
    for (int i = 0; i < 40; ++i) {
        const QByteArray folder = "Documents/" + QByteArray::number(i);
        make(home, {folder + '/', folder + "/a", folder + "/deeper/", folder + "/deeper/b"});
        for (int small = 0; small < 20; ++small)
            home.makeFile(folder + "/small" + QByteArray::number(small), 1);
    }
    const QByteArrayList all = found(home, {}, 1);
    QCOMPARE(all.size(), 80);
    QCOMPARE(found(home, {}, 2), all);
    QCOMPARE(found(home, {}, 4), all);
    QCOMPARE(found(home, {}, 0), all);
}

void TestLargeFileSearch::findsNamesOfAnyBytes()
{
    const MadeTree home;
    make(home, {"Movies/", "Movies/\xff\n%#?.mov"});
    QCOMPARE(found(home), QByteArrayList{"Movies/\xff\n%#?.mov"});
}

void TestLargeFileSearch::findsFilesDeeperThanAnyPath()
{
    const MadeTree home;
    home.makeFolder("Movies");
    const QByteArray last = home.makeChain("Movies", QByteArray(99, 'n'), 60);
    home.makeFile(last + "/file", kLarge);
    QCOMPARE(found(home, {}, 0), QByteArrayList{last + "/file"});
}

void TestLargeFileSearch::holdsOneAccess()
{
    const MadeTree home;
    make(home, {"Movies/", "Movies/a"});
    HomeAccess access(home);
    SearchRecord record(home);
    searchLargeFiles(hostSystemCalls(), access, {searchURLs(homeUrl(home)), {}, {}}, record, {});
    QCOMPARE(record.files.size(), 1);
    QCOMPARE(access.starts(), 1);
    QCOMPARE(access.stops(), 1);
}

void TestLargeFileSearch::isNotCompleteWhenItWasStopped()
{
    const MadeTree home;
    make(home, {"Movies/", "Movies/a"});
    HomeAccess access(home);
    SearchRecord record(home);
    std::stop_source stop;
    const LargeFileQuery query{searchURLs(homeUrl(home)), {}, {}};
    QVERIFY(
        searchLargeFiles(hostSystemCalls(), access, query, record, stop.get_token()).isComplete);
    stop.request_stop();
    const SearchOutcome outcome =
        searchLargeFiles(hostSystemCalls(), access, query, record, stop.get_token());
    QVERIFY(!outcome.isComplete);
    QCOMPARE(outcome.items, 0);
    QCOMPARE(record.files.size(), 1);
}

void TestLargeFileSearch::reportsFoldersOutsideTheGrant()
{
    const MadeTree home;
    const MadeTree other;
    make(other, {"Movies/", "Movies/a"});
    HomeAccess access(home);
    SearchRecord record(other);
    const SearchOutcome outcome = searchLargeFiles(
        hostSystemCalls(), access, {searchURLs(homeUrl(other)).mid(4, 1), {}, {}}, record, {});
    QVERIFY(!outcome.isComplete);
    QCOMPARE(record.files, QByteArrayList());
    QCOMPARE(record.failures, QByteArrayList{"Movies: " + QByteArray::number(EACCES)});
}

void TestLargeFileSearch::countsTheItemsLookedAt()
{
    const MadeTree home;
    make(home, {"Movies/", "Movies/a", "Movies/folder/", "Movies/Package.app/",
                "Movies/Package.app/b", "Movies/.hidden", "Music/"});
    home.makeFile("Movies/folder/small", 1);
    SearchRecord record(home);
    QCOMPARE(search(home, record).items, 4);
}

VANTOR_TEST_MAIN(TestLargeFileSearch)
#include "tst_LargeFileSearch.moc"
