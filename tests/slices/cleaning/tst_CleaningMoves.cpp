#include "platform/system/HostSystemCalls.h"
#include "platform/system/ThreadConfinement.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/disk/Moments.h"
#include "tests/support/run/TestMain.h"

#include <fcntl.h>
#include <sys/stat.h>

Q_DECLARE_METATYPE(std::function<void(const QByteArray &)>)

/// Users go on working while it cleans: they move, save and rename.
class TestCleaningMoves final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void leavesAFolderThatIsDraggedOut_data();
    void leavesAFolderThatIsDraggedOut();
    void leavesALocationThatIsDraggedAway_data();
    void leavesALocationThatIsDraggedAway();
    void keepsWhatComesAfterTheConfirmation_data();
    void keepsWhatComesAfterTheConfirmation();
    void removesWhatStoodThereBefore_data();
    void removesWhatStoodThereBefore();
    void removesAllNamesOfAFile();
    void takesItsOwnRemovalsForNoChangesByOthers();
    void keepsAnExcludedFileThatTakesAnothersName_data();
    void keepsAnExcludedFileThatTakesAnothersName();
    void keepsWhatIsSavedOverANameInTheLastInstant_data();
    void keepsWhatIsSavedOverANameInTheLastInstant();
    void putsBackWhatAKilledCleaningHasMovedAside();
    void cleansNothingThatTheKernelDoesNotConfine();

private:
    using Action = std::function<void(const QByteArray &downloads)>;

    CleaningReport cleanSince(const Moment &confirmed, const FileUrls &excluded = {},
                              const SystemCalls &calls = hostSystemCalls()) const
    {
        SliceToClean slice = contentsOf({m_home->folder("Downloads")});
        slice.confirmed = confirmed;
        const LogRecorder silenced;
        return clean(*m_home, {slice}, excluding(excluded), calls);
    }

    std::unique_ptr<CleaningGround> m_scratch;
    QByteArray m_downloads;
    std::unique_ptr<GrantedFolder> m_home;
};

void TestCleaningMoves::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_downloads = *m_scratch / "home/Downloads";
    makeFolder(m_downloads);
    makeFolder(*m_scratch / "home/Documents");
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home");
}

void TestCleaningMoves::leavesAFolderThatIsDraggedOut_data()
{
    QTest::addColumn<bool>("isConfined");
    QTest::addColumn<bool>("isForOneThread");
    QTest::addColumn<bool>("hasExclusion");
    QTest::addColumn<QByteArray>("folder");
    for (const bool isConfined : {true, false}) {
        for (const bool isForOneThread : {true, false}) {
            for (const bool hasExclusion : {true, false}) {
                for (const char *folder : {"much", "around/much"})
                    QTest::addRow("%s, %s%s, %s", isConfined ? "confined" : "unconfined",
                                  isForOneThread ? "one thread" : "several threads",
                                  hasExclusion ? ", exclusion" : "", folder)
                        << isConfined << isForOneThread << hasExclusion << QByteArray(folder);
            }
        }
    }
}

/// It was dragged out of the selection to be saved.
void TestCleaningMoves::leavesAFolderThatIsDraggedOut()
{
    QFETCH(bool, isConfined);
    QFETCH(bool, isForOneThread);
    QFETCH(bool, hasExclusion);
    QFETCH(QByteArray, folder);
    constexpr int kFiles = 3000;
    constexpr std::size_t kMostUnnoticed = 2 * 256; // two threads
    for (int i = 0; i < kFiles; ++i)
        makeFile(m_downloads + '/' + folder + "/f" + QByteArray::number(i), {});
    makeFile(m_downloads + "/kept");
    const QByteArray saved = *m_scratch / "home/Documents/saved";
    std::atomic<int> removals = 0;
    std::size_t atTheMove = 0;
    class Dragging final : public HookedCalls
    {
    public:
        Dragging(std::function<void()> first, bool isForOneThread)
            : m_first(std::move(first)), m_isForOneThread(isForOneThread)
        {
        }
        bool isForOneThread(int) const override { return m_isForOneThread; }
        std::optional<int> before(const char *call, int, const char *name) const override
        {
            if (takesAside(call, name) && !QByteArrayView(name).endsWith("kept"))
                m_first();
            return {};
        }

    private:
        std::function<void()> m_first;
        bool m_isForOneThread;
    };
    Dragging calls(
        [&] {
            if (++removals == 100)
                doOutside([&] {
                    move(m_downloads + '/' + folder, saved);
                    atTheMove = tree(saved).size();
                });
        },
        isForOneThread);
    if (!isConfined)
        calls.letNothingBeConfined();
    const FileUrls excluded = hasExclusion ? FileUrls{m_home->file("Downloads/kept")} : FileUrls();
    const CleaningReport report = cleanSince(Moment::never(), excluded, calls);
    QVERIFY(atTheMove > 0);
    for (const QByteArray &name : tree(saved))
        QVERIFY2(!isPrivateName(name), name); // all have their own names again
    const std::size_t lost = atTheMove - tree(saved).size();
    QVERIFY2(lost <= (isConfined && hostConfinement().isAvailable() ? 0 : kMostUnnoticed),
             QByteArray::number(qulonglong(lost)));
    QVERIFY(report.refusalCount > 0);
}

void TestCleaningMoves::leavesALocationThatIsDraggedAway_data()
{
    QTest::addColumn<Action>("comeInstead");
    QTest::addColumn<bool>("isConfined");
    const std::pair<const char *, Action> rows[] = {
        {"nothing comes", [](const QByteArray &) {}},
        {"another folder comes", [](const QByteArray &path) { makeFolder(path); }},
        {"a link comes", [](const QByteArray &path) { makeLink(path, "Documents"); }},
        {"a file comes", [](const QByteArray &path) { makeFile(path); }},
    };
    for (const auto &[name, action] : rows) {
        QTest::addRow("%s", name) << action << true;
        QTest::addRow("%s, no confinement", name) << action << false;
    }
}

/// The folder itself is what the user has chosen, but where it stood. A program may make it anew.
void TestCleaningMoves::leavesALocationThatIsDraggedAway()
{
    QFETCH(Action, comeInstead);
    QFETCH(bool, isConfined);
    for (int i = 0; i < 3000; ++i)
        makeFile(m_downloads + "/f" + QByteArray::number(i), {});
    const QByteArray saved = *m_scratch / "home/Documents/saved";
    std::size_t atTheMove = 0;
    Swapper calls("takeAside", "f1500", [&] {
        move(m_downloads, saved);
        comeInstead(m_downloads);
        atTheMove = tree(saved).size();
    });
    if (!isConfined)
        calls.letNothingBeConfined();
    const CleaningReport report = cleanSince(Moment::never(), {}, calls);
    QVERIFY(atTheMove > 1000);
    QVERIFY(atTheMove - tree(saved).size() <= 256);
    QVERIFY(report.refusalCount > 0);
}

void TestCleaningMoves::keepsWhatComesAfterTheConfirmation_data()
{
    QTest::addColumn<Action>("action");
    QTest::addColumn<QByteArray>("kept");
    const auto row = [](const char *name, const char *kept, const Action &action) {
        QTest::addRow("%s", name) << action << QByteArray(kept);
    };
    row("new file", "new", [](const QByteArray &folder) { makeFile(folder + "/new"); });
    row("new file in a folder", "old/new",
        [](const QByteArray &folder) { makeFile(folder + "/old/new"); });
    row("written", "file", [](const QByteArray &folder) { makeFile(folder + "/file", "more"); });
    row("saved over", "file", [](const QByteArray &folder) {
        makeFile(folder + "/../saved", "new");
        move(folder + "/../saved", folder + "/file");
    });
    row("written, with its old time", "file", [](const QByteArray &folder) {
        makeFile(folder + "/file", "more");
        const timespec times[2]{{1, 0}, {1, 0}};
        ::utimensat(AT_FDCWD, (folder + "/file").constData(), times, 0);
    });
    row("renamed", "renamed",
        [](const QByteArray &folder) { move(folder + "/file", folder + "/renamed"); });
    row("moved in", "letter",
        [](const QByteArray &folder) { move(folder + "/../letter", folder + "/letter"); });
    row("moved in over another", "file",
        [](const QByteArray &folder) { move(folder + "/../letter", folder + "/file"); });
    row("folder moved in", "letters/letter",
        [](const QByteArray &folder) { move(folder + "/../letters", folder + "/letters"); });
    row("folder moved deep in", "old/letters/letter",
        [](const QByteArray &folder) { move(folder + "/../letters", folder + "/old/letters"); });
    row("folder renamed", "renamed/inside",
        [](const QByteArray &folder) { move(folder + "/old", folder + "/renamed"); });
    row("folder exchanged", "old/letter", [](const QByteArray &folder) {
        move(folder + "/old", folder + "/../away");
        move(folder + "/../letters", folder + "/old");
    });
    row("new empty folder", "new", [](const QByteArray &folder) { makeFolder(folder + "/new"); });
    row("new link", "new", [](const QByteArray &folder) { makeLink(folder + "/new", "file"); });
    row("another name", "twin", [](const QByteArray &folder) {
        std::filesystem::create_hard_link(native(folder + "/../letter"), native(folder + "/twin"));
    });
}

void TestCleaningMoves::keepsWhatComesAfterTheConfirmation()
{
    QFETCH(Action, action);
    QFETCH(QByteArray, kept);
    makeFile(m_downloads + "/file");
    makeFile(m_downloads + "/old/inside");
    makeFile(m_downloads + "/other/inside");
    makeFile(*m_scratch / "home/letter");
    makeFile(*m_scratch / "home/letters/letter");
    const Moment confirmed = momentBetween();
    action(m_downloads);
    const CleaningReport report = cleanSince(confirmed);
    QVERIFY(exists(m_downloads + '/' + kept));
    QVERIFY(!exists(m_downloads + "/other")); // the rest goes
    QVERIFY(report.refusalCount > 0);
    QCOMPARE(report.refusals.first().reason, RefusalReason::ChangedLater);
}

void TestCleaningMoves::removesWhatStoodThereBefore_data()
{
    QTest::addColumn<Action>("action");
    QTest::addColumn<QByteArray>("gone");
    const auto row = [](const char *name, const char *gone, const Action &action) {
        QTest::addRow("%s", name) << action << QByteArray(gone);
    };
    row("nothing happened", "old", [](const QByteArray &) {});
    row("beside a new file", "old/inside",
        [](const QByteArray &folder) { makeFile(folder + "/old/new"); });
    row("deep beside a new file", "old/deep/inside",
        [](const QByteArray &folder) { makeFile(folder + "/old/new"); });
    row("in a folder with a new file, in one without", "old/deep/inside",
        [](const QByteArray &folder) { makeFile(folder + "/old/deep/new"); });
    row("read, and looked at", "old", [](const QByteArray &folder) {
        const timespec times[2]{{1, 0}, {0, UTIME_OMIT}};
        (void)times;
        (void)tree(folder);
    });
}

void TestCleaningMoves::removesWhatStoodThereBefore()
{
    QFETCH(Action, action);
    QFETCH(QByteArray, gone);
    makeFile(m_downloads + "/old/inside");
    makeFile(m_downloads + "/old/deep/inside");
    const Moment confirmed = momentBetween();
    action(m_downloads);
    cleanSince(confirmed);
    QVERIFY(!exists(m_downloads + '/' + gone));
}

/// Each removal of a name changes the time of the file's last change, for its other names too.
void TestCleaningMoves::removesAllNamesOfAFile()
{
    makeFile(m_downloads + "/a");
    for (const char *name : {"/b", "/c", "/folder/d"}) {
        makeFolder(m_downloads + "/folder");
        std::filesystem::create_hard_link(native(m_downloads + "/a"), native(m_downloads + name));
    }
    const CleaningReport report = cleanSince(momentBetween());
    QCOMPARE(report.refusalCount, 0U);
    QVERIFY(tree(m_downloads).empty());
}

/// Large files were picked in a folder that is emptied, too. Their removal changes the folders
/// around them.
void TestCleaningMoves::takesItsOwnRemovalsForNoChangesByOthers()
{
    for (const char *name : {"/large", "/folder/large", "/folder/deep/small", "/folder/small"})
        makeFile(m_downloads + name);
    const Moment confirmed = momentBetween();
    SliceToClean large =
        theFiles({m_home->file("Downloads/large"), m_home->file("Downloads/folder/large")});
    SliceToClean downloads = contentsOf({m_home->folder("Downloads")});
    large.confirmed = downloads.confirmed = confirmed;
    const LogRecorder silenced;
    const CleaningReport report = clean(*m_home, {large, downloads});
    QCOMPARE(report.refusalCount, 0U);
    QVERIFY(tree(m_downloads).empty());
}

void TestCleaningMoves::keepsAnExcludedFileThatTakesAnothersName_data()
{
    QTest::addColumn<QByteArray>("call");
    for (const char *call : {"status", "takeAside"})
        QTest::addRow("before %s", call) << QByteArray(call);
}

/// In the last instant, or between the look and the removal.
void TestCleaningMoves::keepsAnExcludedFileThatTakesAnothersName()
{
    QFETCH(QByteArray, call);
    makeFile(m_downloads + "/doomed/file", "doomed");
    makeFile(m_downloads + "/keep/precious", "precious");
    const Swapper calls(
        call, "file", [&] { move(m_downloads + "/keep/precious", m_downloads + "/doomed/file"); });
    const CleaningReport report =
        cleanSince(momentBetween(), {m_home->folder("Downloads/keep")}, calls);
    const QByteArray place = m_downloads + "/doomed/file";
    QVERIFY(exists(place) && std::filesystem::file_size(native(place)) == 8);
    QCOMPARE(report.refusalCount + report.failureCount, 1U);
}

void TestCleaningMoves::keepsWhatIsSavedOverANameInTheLastInstant_data()
{
    QTest::addColumn<QByteArrayList>("saved");
    QTest::addRow("it is the first change in its folder") << QByteArrayList();
    QTest::addRow("a file has come since the confirmation") << QByteArrayList{"new"};
    QTest::addRow("others have been written") << QByteArrayList{"older", "newer"};
}

/// Between the look and the removal, while nothing is excluded.
void TestCleaningMoves::keepsWhatIsSavedOverANameInTheLastInstant()
{
    QFETCH(QByteArrayList, saved);
    const QByteArray folder = m_downloads + "/doomed/";
    makeFile(folder + "older");
    makeFile(folder + "file", "doomed");
    makeFile(folder + "newer");
    makeFile(*m_scratch / "home/Documents/saving", "precious");
    const Moment confirmed = momentBetween();
    for (const QByteArray &name : std::as_const(saved))
        makeFile(folder + name, "written");
    const QByteArray place = folder + "file";
    const AfterTheLook calls("file", [&] { move(*m_scratch / "home/Documents/saving", place); });
    const CleaningReport report = cleanSince(confirmed, {}, calls);
    QVERIFY(exists(place) && std::filesystem::file_size(native(place)) == 8);
    QCOMPARE(report.refusalCount + report.failureCount, std::size_t(saved.size()) + 1);
}

void TestCleaningMoves::putsBackWhatAKilledCleaningHasMovedAside()
{
    const QByteArray longName(250, 'l');
    makeFile(m_downloads + "/.vantor-aside.precious");
    makeFile(m_downloads + "/.vantor-aside-long.01234567." + longName.first(226));
    const CleaningReport report = cleanSince(Moment::never());
    QCOMPARE(tree(m_downloads), std::set<QByteArray>({"precious", longName.first(226)}));
    QCOMPARE(report.refusalCount, 2U);
}

/// The kernel can confine, but fails: then the defence that was promised is missing.
void TestCleaningMoves::cleansNothingThatTheKernelDoesNotConfine()
{
    class Refusing final : public ThreadConfinement
    {
    public:
        bool isAvailable() const override { return true; }
        SystemResult<FileDescriptor> makeRules() const override
        {
            return hostConfinement().makeRules();
        }
        SystemResult<void> allow(int rules, int folder, FolderRights rights) const override
        {
            return hostConfinement().allow(rules, folder, rights);
        }
        SystemResult<void> enterForGood(int) const override { return tl::unexpected(E2BIG); }
    };
    class RefusingCalls final : public HookedCalls
    {
    public:
        const ThreadConfinement &confinement() const override { return m_refusing; }

    private:
        Refusing m_refusing;
    };
    makeFile(m_downloads + "/file");
    const CleaningReport report = cleanSince(Moment::never(), {}, RefusingCalls());
    QVERIFY(exists(m_downloads + "/file"));
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::Unconfined);
}

VANTOR_TEST_MAIN(TestCleaningMoves)
#include "tst_CleaningMoves.moc"
