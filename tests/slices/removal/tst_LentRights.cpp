#include "slices/removal/LentRights.h"

#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr mode_t kReadOnly = 0555;

mode_t modeOf(const QByteArray &path)
{
    struct stat found
    {
    };
    return ::lstat(path.constData(), &found) == 0 ? found.st_mode & 07777 : 0;
}

/// Fails to take a right to write away, and a call of another name.
class Stubborn : public HookedCalls
{
public:
    Stubborn(const QByteArray &alsoFails, bool isForOneThread)
        : m_alsoFails(alsoFails), m_isForOneThread(isForOneThread)
    {
    }

    bool isForOneThread(int) const override { return m_isForOneThread; }
    std::optional<int> before(const char *call, int folder, const char *name) const final
    {
        watch(call, name);
        if (m_alsoFails == call)
            return EBUSY;
        const bool isTaken = qstrcmp(call, "setPermissions") == 0 && isWritable(folder);
        return isTaken ? std::optional(EIO) : std::nullopt;
    }

private:
    /// For those who do something before a call of this name.
    virtual void watch(const char *, const char *) const {}

    /// A folder that is writable already is given no right to write: the call takes it away.
    static bool isWritable(int folder)
    {
        struct stat found
        {
        };
        return ::fstat(folder, &found) == 0 && (found.st_mode & S_IWUSR) != 0;
    }

    QByteArray m_alsoFails;
    bool m_isForOneThread;
};

} // namespace

/// And what a cleaning does with them.
class TestLentRights final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void givesThemBackOnce();
    void givesThemBackAtItsEnd();
    void knowsThatAClosedFolderDidNotGetThem();
    void tellsOfRightsThatCouldNotBeGivenBack_data();
    void tellsOfRightsThatCouldNotBeGivenBack();
    void tellsNothingOfAFolderThatIsGone_data();
    void tellsNothingOfAFolderThatIsGone();
    void tellsOfAFolderThatWasDraggedOut();
    void givesThemBackToBothPartsOfATornTree_data();
    void givesThemBackToBothPartsOfATornTree();
    void tellsOfEachFolderOfATornTree();

private:
    /// A read-only folder with something in it.
    QByteArray makeReadOnly(const QByteArray &path) const;
    QByteArray makeReadOnlyChain(int levels) const;
    CleaningReport cleanWith(const SystemCalls &calls, const FileUrls &excluded = {},
                             const std::stop_token &stop = {}) const;
    static QByteArrayList foldersIn(const QByteArray &folder);
    static QByteArrayList toldOf(const CleaningReport &report);

    std::unique_ptr<CleaningGround> m_scratch;
    QByteArray m_downloads;
    std::unique_ptr<GrantedFolder> m_home;
};

void TestLentRights::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_downloads = *m_scratch / "home/Downloads";
    makeFolder(m_downloads);
    makeFolder(*m_scratch / "home/Documents");
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home");
}

QByteArray TestLentRights::makeReadOnly(const QByteArray &path) const
{
    makeFile(m_downloads + '/' + path + "/inside");
    ::chmod((m_downloads + '/' + path).constData(), kReadOnly);
    return m_downloads + '/' + path;
}

/// The folder "1" of it, which holds "2", and so on; a file in the last.
QByteArray TestLentRights::makeReadOnlyChain(int levels) const
{
    QByteArrayList folders{m_downloads + "/1"};
    for (int i = 2; i <= levels; ++i)
        folders.append(folders.constLast() + '/' + QByteArray::number(i));
    makeFile(folders.constLast() + "/file");
    for (const QByteArray &folder : folders)
        ::chmod(folder.constData(), kReadOnly);
    return folders.constFirst();
}

CleaningReport TestLentRights::cleanWith(const SystemCalls &calls, const FileUrls &excluded,
                                         const std::stop_token &stop) const
{
    SliceToClean trash = contentsOf({m_home->folder("Downloads")});
    trash.readOnlyFolders = ReadOnlyFolders::Emptied;
    const LogRecorder silenced;
    return performCleaning(calls, makeCleaningPlan(calls, *m_home, {trash}, excluding(excluded)),
                           stop);
}

QByteArrayList TestLentRights::toldOf(const CleaningReport &report)
{
    QByteArrayList paths;
    for (const CleaningRefusal &refusal : report.refusals) {
        if (refusal.reason == RefusalReason::RightsChanged)
            paths.append(refusal.path);
    }
    return paths;
}

/// With itself; none where it is not.
QByteArrayList TestLentRights::foldersIn(const QByteArray &folder)
{
    if (!exists(folder))
        return {};
    QByteArrayList folders{folder};
    for (const QByteArray &path : tree(folder)) {
        if (std::filesystem::is_directory(native(folder + '/' + path)))
            folders.append(folder + '/' + path);
    }
    return folders;
}

void TestLentRights::givesThemBackOnce()
{
    const QByteArray path = makeReadOnly("album");
    const FileDescriptor folder(::open(path.constData(), O_RDONLY));
    LentRights first(hostSystemCalls(), folder.get(), 0511);
    LentRights second(std::move(first));
    first.giveBack();
    QCOMPARE(modeOf(path), kReadOnly);
    second.giveBack();
    QCOMPARE(modeOf(path), mode_t(0511));
    ::chmod(path.constData(), kReadOnly);
    second.giveBack();
    QCOMPARE(modeOf(path), kReadOnly);
    QVERIFY(!first.failure() && !second.failure());
}

void TestLentRights::givesThemBackAtItsEnd()
{
    const QByteArray path = makeReadOnly("album");
    const FileDescriptor folder(::open(path.constData(), O_RDONLY));
    {
        LentRights forgotten(hostSystemCalls(), folder.get(), 0500);
        forgotten.forget();
    }
    QCOMPARE(modeOf(path), kReadOnly);
    {
        const LentRights lent(hostSystemCalls(), folder.get(), 0511);
    }
    QCOMPARE(modeOf(path), mode_t(0511));
}

void TestLentRights::knowsThatAClosedFolderDidNotGetThem()
{
    const QByteArray path = makeReadOnly("album");
    const FileDescriptor folder(::open(path.constData(), O_RDONLY));
    LentRights rights(hostSystemCalls(), folder.get(), 0511);
    rights.folderIsClosed();
    rights.giveBack();
    QVERIFY(rights.failure());
    QCOMPARE(modeOf(path), kReadOnly); // whatever has the descriptor now is another's
    rights.folderIsOpenAs(folder.get());
    rights.giveBack();
    QVERIFY(!rights.failure());
    QCOMPARE(modeOf(path), mode_t(0511));
}

void TestLentRights::tellsOfRightsThatCouldNotBeGivenBack_data()
{
    QTest::addColumn<QByteArray>("fails");
    QTest::addColumn<bool>("isStopped");
    QTest::addColumn<bool>("isForOneThread");
    QTest::addColumn<bool>("hasExclusion");
    for (const bool isForOneThread : {true, false}) {
        const auto row = [&](const char *what, const char *call, bool isStopped, bool excludes) {
            QTest::addRow("%s, %s", what, isForOneThread ? "one thread" : "several threads")
                << QByteArray(call) << isStopped << isForOneThread << excludes;
        };
        row("something stays in it", "removeFile", false, false);
        row("it is refused", "removeFolder", false, false);
        row("stopped", "", true, false);
        row("beside something kept", "removeFolder", false, true);
        row("stopped beside something kept", "", true, true);
    }
}

void TestLentRights::tellsOfRightsThatCouldNotBeGivenBack()
{
    QFETCH(QByteArray, fails);
    QFETCH(bool, isStopped);
    QFETCH(bool, isForOneThread);
    QFETCH(bool, hasExclusion);
    class Stopping final : public Stubborn
    {
    public:
        Stopping(const QByteArray &fails, bool isForOneThread, std::stop_source *stop)
            : Stubborn(fails, isForOneThread), m_stop(stop)
        {
        }

    private:
        void watch(const char *call, const char *name) const override
        {
            const bool isIt = qstrcmp(call, "removeFile") == 0 && m_stop;
            if (isIt && QByteArrayView(name).endsWith("inside"))
                m_stop->request_stop();
        }

        std::stop_source *m_stop;
    };
    const QByteArray album = makeReadOnly("album");
    makeFile(m_downloads + "/kept");
    std::stop_source stop;
    const CleaningReport report = cleanWith(
        Stopping(fails, isForOneThread, isStopped ? &stop : nullptr),
        hasExclusion ? FileUrls{m_home->file("Downloads/kept")} : FileUrls(), stop.get_token());
    QVERIFY(exists(album));
    QVERIFY(modeOf(album) != kReadOnly);
    QCOMPARE(toldOf(report), QByteArrayList({album}));
    QCOMPARE(report.refusals.constLast().error, EIO);
}

void TestLentRights::tellsNothingOfAFolderThatIsGone_data()
{
    QTest::addColumn<bool>("isForOneThread");
    QTest::addColumn<bool>("hasExclusion");
    for (const bool isForOneThread : {true, false}) {
        for (const bool hasExclusion : {true, false})
            QTest::addRow("%s%s", isForOneThread ? "one thread" : "several threads",
                          hasExclusion ? ", beside something kept" : "")
                << isForOneThread << hasExclusion;
    }
}

void TestLentRights::tellsNothingOfAFolderThatIsGone()
{
    QFETCH(bool, isForOneThread);
    QFETCH(bool, hasExclusion);
    const QByteArray album = makeReadOnly("album");
    makeFile(m_downloads + "/kept");
    const CleaningReport report =
        cleanWith(Stubborn({}, isForOneThread),
                  hasExclusion ? FileUrls{m_home->file("Downloads/kept")} : FileUrls());
    QVERIFY(!exists(album));
    QCOMPARE(report.refusalCount + report.failureCount, 0U);
}

/// The user has it elsewhere now, with rights that it did not have.
void TestLentRights::tellsOfAFolderThatWasDraggedOut()
{
    class Dragged final : public Stubborn
    {
    public:
        explicit Dragged(std::function<void()> drag) : Stubborn({}, true), m_drag(std::move(drag))
        {
        }

    private:
        void watch(const char *call, const char *name) const override
        {
            if (qstrcmp(call, "status") == 0 && qstrcmp(name, "album") == 0 && ++m_looks == 2)
                doOutside(m_drag);
        }

        std::function<void()> m_drag;
        mutable int m_looks = 0;
    };
    const QByteArray album = makeReadOnly("album");
    const QByteArray saved = *m_scratch / "home/Documents/saved";
    const CleaningReport report = cleanWith(Dragged([&] { move(album, saved); }));
    QVERIFY(exists(saved) && !exists(album));
    QCOMPARE(toldOf(report), QByteArrayList({album}));
}

void TestLentRights::givesThemBackToBothPartsOfATornTree_data()
{
    QTest::addColumn<bool>("isConfined");
    QTest::addRow("confined") << true;
    QTest::addRow("unconfined") << false;
}

/// Of a deep tree the outer folders are not held open. A part is moved away while its inside is
/// emptied: the way back is lost then. A confined thread does not come to the closed ones that have
/// left the location, and tells of them.
void TestLentRights::givesThemBackToBothPartsOfATornTree()
{
    QFETCH(bool, isConfined);
    const QByteArray top = makeReadOnlyChain(20);
    const QByteArray saved = *m_scratch / "home/Documents/saved";
    int torn = 0;
    int calls = 1;
    for (int call = -1; call < calls; ++call) {
        makeReadOnlyChain(20);
        Interloper tearing({{call, [&] { move(top + "/2/3", saved); }}});
        if (!isConfined)
            tearing.letNothingBeConfined();
        const CleaningReport report = cleanWith(tearing);
        calls = call < 0 ? tearing.count() : calls;
        torn += exists(saved) && exists(top) ? 1 : 0;
        const QByteArrayList told = toldOf(report);
        QVERIFY(isConfined || told.isEmpty());
        for (const auto &[part, former] : {std::pair(top, top), std::pair(saved, top + "/2/3")}) {
            for (const QByteArray &folder : foldersIn(part)) {
                const QByteArray place = former + folder.sliced(part.size());
                QVERIFY2(modeOf(folder) == kReadOnly || told.contains(place),
                         QByteArray::number(call) + ' ' + place);
            }
            removeTree(native(part));
        }
    }
    QVERIFY(torn > 40);
}

void TestLentRights::tellsOfEachFolderOfATornTree()
{
    class Tearing final : public Stubborn
    {
    public:
        explicit Tearing(std::function<void()> tear) : Stubborn({}, true), m_tear(std::move(tear))
        {
        }

    private:
        void watch(const char *call, const char *) const override
        {
            if (qstrcmp(call, "removeFile") == 0)
                doOutside(m_tear);
        }

        std::function<void()> m_tear;
    };
    const QByteArray top = makeReadOnlyChain(20);
    const QByteArray saved = *m_scratch / "home/Documents/saved";
    const Tearing calls([&] { move(top + "/2/3", saved); });
    const CleaningReport report = cleanWith(calls);
    QByteArrayList told = toldOf(report);
    std::sort(told.begin(), told.end());
    QVERIFY(exists(saved));
    QVERIFY2(told.contains(top) && told.contains(top + "/2") && told.contains(top + "/2/3"),
             told.join('\n'));
    for (const QByteArray &path : told)
        QCOMPARE(told.count(path), 1);
}

VANTOR_TEST_MAIN(TestLentRights)
#include "tst_LentRights.moc"
