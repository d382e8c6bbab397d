#include "platform/system/HostSystemCalls.h"
#include "slices/cleaning/Cleaning.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/TestMain.h"

class TestCleaning final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void emptiesAFolderAndLeavesIt();
    void keepsAnExcludedFolderAndRemovesTheRestAtAnyDepth();
    void keepsAnExcludedFile();
    void isNotChangedByAnExclusionElsewhere();
    void removesExactlyTheVeryFilesThatExist();
    void removesNoneOfTheExcludedFiles();
    void keepsAPackageOnTheWayToAnExclusion();
    void removesPackagesThatHoldNoExclusion();
    void cleansSeveralSlices();
    void doesNothingWhenNothingIsPlanned();

    void removesLinksAndNeverWhatTheyLeadTo();
    void leavesTheOutsideNameOfAHardLink();
    void keepsAnExcludedItemUnderItsNewName();
    void leavesAPlaceThatWasReplacedSinceThePlan();
    void leavesAFileThatWasReplacedSinceThePlan();

    void treatsEveryNameAsItsBytes_data();
    void treatsEveryNameAsItsBytes();
    void stopsBeforeTheNextItem();

private:
    CleaningReport cleanFolder(const FileUrls &excluded = {}) const
    {
        return clean(*m_home, {contentsOf({m_home->folder("Downloads")})}, excluding(excluded));
    }
    QByteArray downloads(const QByteArray &relative = {}) const
    {
        return m_path + "/Downloads" + (relative.isEmpty() ? "" : "/" + relative);
    }
    static bool isPerfect(const CleaningReport &report)
    {
        return report.failures.isEmpty() && report.refusals.isEmpty() && report.failureCount == 0 &&
               report.refusalCount == 0 && !report.wasStopped;
    }

    std::unique_ptr<CleaningGround> m_scratch;
    std::unique_ptr<GrantedFolder> m_home;
    QByteArray m_path;
};

void TestCleaning::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_path = *m_scratch / "home";
    makeFolder(downloads());
    m_home = std::make_unique<GrantedFolder>(m_path);
}

void TestCleaning::emptiesAFolderAndLeavesIt()
{
    for (const char *name : {"a", ".hidden", "folder/b", "folder/.c", ".folder/deep/er/d"})
        makeFile(downloads(name));
    makeFolder(downloads("empty"));
    const CleaningReport report = cleanFolder();
    QVERIFY(isPerfect(report));
    QCOMPARE(report.removedItems, std::uint64_t(10));
    QVERIFY(tree(downloads()).empty());
    QVERIFY(exists(downloads()));
}

void TestCleaning::keepsAnExcludedFolderAndRemovesTheRestAtAnyDepth()
{
    for (const char *name : {"Keep/a", "Keep/.b", "Keep/c/d", "Deep/Keep/e", "Deep/f", "Deep/.g",
                             "Deep/h/i", ".j", "KeepNot/k"})
        makeFile(downloads(name));
    const FileUrls excluded{m_home->folder("Downloads/Keep"),
                            m_home->folder("Downloads/Deep/Keep")};
    QVERIFY(isPerfect(cleanFolder(excluded)));
    QCOMPARE(tree(downloads()),
             std::set<QByteArray>({"Keep", "Keep/a", "Keep/.b", "Keep/c", "Keep/c/d", "Deep",
                                   "Deep/Keep", "Deep/Keep/e"}));
}

void TestCleaning::keepsAnExcludedFile()
{
    for (const char *name : {"a/b/kept", "a/b/gone", "a/c", "kept"})
        makeFile(downloads(name));
    QVERIFY(isPerfect(cleanFolder({m_home->file("Downloads/a/b/kept")})));
    QCOMPARE(tree(downloads()), std::set<QByteArray>({"a", "a/b", "a/b/kept"}));
}

void TestCleaning::isNotChangedByAnExclusionElsewhere()
{
    makeFile(m_path + "/Documents/letter");
    makeFile(downloads("a/b"));
    QVERIFY(isPerfect(cleanFolder({m_home->folder("Documents")})));
    QVERIFY(tree(downloads()).empty());
    QVERIFY(exists(m_path + "/Documents/letter"));
}

void TestCleaning::removesExactlyTheVeryFilesThatExist()
{
    for (const char *name : {"Default/Cookies", "Default/History", "Default/Bookmarks",
                             "Safari/History.plist", "Safari/other"})
        makeFile(m_path + "/Library/" + name);
    FileUrls files;
    for (const char *name : {"Default/Cookies", "Default/History", "Default/Web Data",
                             "Safari/History.plist", "Safari/WebpageIcons.db"})
        files.append(m_home->file(QByteArray("Library/") + name));
    const CleaningReport report = clean(*m_home, {theFiles(files)});
    QVERIFY(isPerfect(report));
    QCOMPARE(report.removedItems, std::uint64_t(3));
    QCOMPARE(tree(m_path + "/Library"),
             std::set<QByteArray>({"Default", "Default/Bookmarks", "Safari", "Safari/other"}));
}

void TestCleaning::removesNoneOfTheExcludedFiles()
{
    FileUrls files;
    for (const char *name : {"one", "two", "three"}) {
        makeFile(m_path + "/films/" + name);
        files.append(m_home->file(QByteArray("films/") + name));
    }
    // Listed twice, as a careless caller might.
    QVERIFY(isPerfect(clean(*m_home, {theFiles(files + files)}, excluding({files[1]}))));
    QCOMPARE(tree(m_path + "/films"), std::set<QByteArray>({"two"}));
}

void TestCleaning::keepsAPackageOnTheWayToAnExclusion()
{
    for (const char *name : {"Tool.app/data/kept", "Tool.app/data/also", "Tool.app/b", "c"})
        makeFile(downloads(name));
    QVERIFY(isPerfect(cleanFolder({m_home->file("Downloads/Tool.app/data/kept")})));
    QCOMPARE(tree(downloads()),
             std::set<QByteArray>({"Tool.app", "Tool.app/data", "Tool.app/data/kept",
                                   "Tool.app/data/also", "Tool.app/b"}));
}

void TestCleaning::removesPackagesThatHoldNoExclusion()
{
    for (const char *name : {"Tool.app/data", "folder/Other.app/data", "Keep/a"})
        makeFile(downloads(name));
    QVERIFY(isPerfect(cleanFolder({m_home->folder("Downloads/Keep")})));
    QCOMPARE(tree(downloads()), std::set<QByteArray>({"Keep", "Keep/a"}));
}

void TestCleaning::cleansSeveralSlices()
{
    makeFile(downloads("film"));
    makeFile(m_path + "/.Trash/b");
    makeFile(m_path + "/Library/Caches/c");
    const QList<SliceToClean> slices{
        contentsOf({m_home->folder(".Trash")}), theFiles({m_home->file("Downloads/film")}),
        contentsOf({m_home->folder("Library/Caches"), m_home->folder("Downloads")})};
    const CleaningReport report = clean(*m_home, slices);
    QVERIFY(isPerfect(report));
    QCOMPARE(report.removedItems, std::uint64_t(3));
    QCOMPARE(tree(m_path),
             std::set<QByteArray>({".Trash", "Downloads", "Library", "Library/Caches"}));
}

void TestCleaning::doesNothingWhenNothingIsPlanned()
{
    makeFile(downloads("a"));
    const auto broken = ExcludedPaths::fromStoredStrings({QStringLiteral("nonsense")});
    const CleaningReport report =
        clean(*m_home, {contentsOf({m_home->folder("Downloads")})}, broken);
    QCOMPARE(report.removedItems, std::uint64_t(0));
    QCOMPARE(report.refusalCount, std::uint64_t(1));
    QCOMPARE(report.refusals.first().reason, RefusalReason::UnparsableExclusion);
    QVERIFY(exists(downloads("a")));
    QVERIFY(isPerfect(clean(*m_home, {})));
}

void TestCleaning::removesLinksAndNeverWhatTheyLeadTo()
{
    makeFile(*m_scratch / "outside/file");
    makeLink(downloads("to folder"), *m_scratch / "outside");
    makeLink(downloads("deep/to file"), *m_scratch / "outside/file");
    makeLink(downloads("dangling"), "nowhere");
    makeLink(downloads("loop"), "loop");
    const CleaningReport report = cleanFolder();
    QVERIFY(isPerfect(report));
    QVERIFY(tree(downloads()).empty());
    QVERIFY(exists(*m_scratch / "outside/file"));
    // The very file may be a link, too.
    makeLink(downloads("picked"), *m_scratch / "outside/file");
    QVERIFY(isPerfect(clean(*m_home, {theFiles({m_home->file("Downloads/picked")})})));
    QVERIFY(!exists(downloads("picked")));
    QVERIFY(exists(*m_scratch / "outside/file"));
}

void TestCleaning::leavesTheOutsideNameOfAHardLink()
{
    makeFile(*m_scratch / "outside", "content");
    std::filesystem::create_hard_link(native(*m_scratch / "outside"), native(downloads("a")));
    std::filesystem::create_hard_link(native(*m_scratch / "outside"), native(downloads("b")));
    QVERIFY(isPerfect(cleanFolder()));
    QVERIFY(tree(downloads()).empty());
    QCOMPARE(std::filesystem::file_size(native(*m_scratch / "outside")), std::uintmax_t(7));
}

void TestCleaning::keepsAnExcludedItemUnderItsNewName()
{
    for (const char *name : {"Keep/a", "kept", "folder/b"})
        makeFile(downloads(name));
    const CleaningPlan plan = makeCleaningPlan(
        hostSystemCalls(), *m_home, {contentsOf({m_home->folder("Downloads")})},
        excluding({m_home->folder("Downloads/Keep"), m_home->file("Downloads/kept")}));
    std::filesystem::rename(native(downloads("Keep")), native(downloads("folder/Renamed")));
    std::filesystem::rename(native(downloads("kept")), native(downloads("renamed")));
    QVERIFY(isPerfect(performCleaning(hostSystemCalls(), plan, {})));
    QCOMPARE(tree(downloads()),
             std::set<QByteArray>({"folder", "folder/Renamed", "folder/Renamed/a", "renamed"}));
}

void TestCleaning::leavesAPlaceThatWasReplacedSinceThePlan()
{
    makeFile(downloads("a"));
    const CleaningPlan plan = makeCleaningPlan(hostSystemCalls(), *m_home,
                                               {contentsOf({m_home->folder("Downloads")})}, {});
    std::filesystem::rename(native(downloads()), native(m_path + "/Moved"));
    makeFile(downloads("b"));
    const CleaningReport report = performCleaning(hostSystemCalls(), plan, {});
    QCOMPARE(report.refusals.size(), 1);
    QCOMPARE(report.refusals.first().reason, RefusalReason::Changed);
    QVERIFY(exists(downloads("b")));
    QVERIFY(exists(m_path + "/Moved/a"));
}

void TestCleaning::leavesAFileThatWasReplacedSinceThePlan()
{
    makeFile(downloads("picked"));
    makeFile(downloads("other"));
    const CleaningPlan plan = makeCleaningPlan(hostSystemCalls(), *m_home,
                                               {theFiles({m_home->file("Downloads/picked")})}, {});
    std::filesystem::rename(native(downloads("other")), native(downloads("picked")));
    const CleaningReport report = performCleaning(hostSystemCalls(), plan, {});
    QCOMPARE(report.refusals.size(), 1);
    QCOMPARE(report.refusals.first().reason, RefusalReason::Changed);
    QVERIFY(exists(downloads("picked")));
}

void TestCleaning::treatsEveryNameAsItsBytes_data()
{
    QTest::addColumn<QByteArray>("kept");
    QTest::addColumn<QByteArrayList>("others");
    QTest::addRow("blank") << QByteArray("a b") << QByteArrayList{"a%20b", "a", " "};
    QTest::addRow("percent") << QByteArray("100%") << QByteArrayList{"10", "%"};
    QTest::addRow("escape") << QByteArray("a%2Fb") << QByteArrayList{"a%2fb", "a%252Fb"};
    QTest::addRow("hash") << QByteArray("#") << QByteArrayList{"%23", "a#"};
    QTest::addRow("question") << QByteArray("?x") << QByteArrayList{"%3Fx", "x?"};
    QTest::addRow("newline") << QByteArray("a\nb") << QByteArrayList{"b", "a b"};
    QTest::addRow("not UTF-8") << QByteArray("a\xff") << QByteArrayList{"a\xef\xbf\xbd", "b\xfe"};
    QTest::addRow("composed") << QByteArray("\xc3\xa4x") << QByteArrayList{"a\xcc\x88x"};
    QTest::addRow("decomposed") << QByteArray("a\xcc\x88x") << QByteArrayList{"\xc3\xa4x"};
    QTest::addRow("255 bytes") << QByteArray(255, '\xe4')
                               << QByteArrayList{QByteArray(254, '\xe4') + 'a',
                                                 QByteArray(255, 'a')};
    QTest::addRow("prefixes") << QByteArray("ab/") << QByteArrayList{"abc", "ab.c", "ab c", "b"};
    QTest::addRow("case") << QByteArray("Keep") << QByteArrayList{"keep", "KEEP"};
    QTest::addRow("dots") << QByteArray("...") << QByteArrayList{"..a", ".a"};
}

void TestCleaning::treatsEveryNameAsItsBytes()
{
    QFETCH(QByteArray, kept);
    QFETCH(QByteArrayList, others);
    const FileUrl excluded = FileUrl::fromPath(
        downloads(kept), kept.endsWith('/') ? FileUrlKind::Folder : FileUrlKind::File);
    const QByteArray name = excluded.lastPathComponent();
    makeFile(downloads(name + "/inside"));
    for (const QByteArray &other : others)
        makeFile(downloads(other + "/inside"));
    QVERIFY(isPerfect(cleanFolder({excluded})));
    QCOMPARE(tree(downloads()), std::set<QByteArray>({name, name + "/inside"}));
    QVERIFY(isPerfect(cleanFolder()));
    QVERIFY(tree(downloads()).empty());
}

void TestCleaning::stopsBeforeTheNextItem()
{
    class Stopping final : public HookedCalls
    {
    public:
        explicit Stopping(std::stop_source &source) : m_source(source) {}
        std::optional<int> before(const char *call, int, const char *) const override
        {
            m_hasGoneOn =
                m_hasGoneOn || (m_source.stop_requested() && QByteArrayView(call) == "openFolder");
            if (QByteArrayView(call) == "removeFile")
                m_source.request_stop();
            return {};
        }
        /// Whether another folder was opened after the stop.
        bool hasGoneOn() const { return m_hasGoneOn; }

    private:
        std::stop_source &m_source;
        mutable bool m_hasGoneOn = false;
    };
    for (const char *name : {"folder/a", "folder/b", "folder/c"})
        makeFile(downloads(name));
    makeFile(m_path + "/.Trash/d");
    std::stop_source source;
    const Stopping calls(source);
    const CleaningPlan plan = makeCleaningPlan(
        calls, *m_home, {contentsOf({m_home->folder("Downloads"), m_home->folder(".Trash")})}, {});
    const CleaningReport report = performCleaning(calls, plan, source.get_token());
    QVERIFY(report.wasStopped);
    QVERIFY(!calls.hasGoneOn());
    QCOMPARE(report.removedItems, std::uint64_t(1));
    QCOMPARE(tree(downloads()).size(), std::size_t(3));
    QVERIFY(exists(m_path + "/.Trash/d"));
}

VANTOR_TEST_MAIN(TestCleaning)
#include "tst_Cleaning.moc"
