#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemResult.h"
#include "slices/cleaning/SlicesToClean.h"
#include "slices/record/Info.h"
#include "slices/sizing/FolderSizing.h"
#include "tests/slices/kit/Consent.h"
#include "tests/slices/kit/FailingRemoval.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/slices/kit/WatchedFolder.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/disk/MadeTree.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <cstdio>

namespace {

const QByteArray kTrash = ".local/share/Trash/";

#ifdef __SANITIZE_THREAD__
constexpr bool kIsOneThreadDue = true;
#else
constexpr bool kIsOneThreadDue = false;
#endif

/// Under the thread sanitizer a child of a process that has several threads is to start none, for
/// it takes them for those of its parent: there a cleaning believes that no disk is waited for.
class ChildsCalls final : public HookedCalls
{
public:
    using HookedCalls::HookedCalls;

    bool isForOneThread(int descriptor) const override
    {
        return kIsOneThreadDue || HookedCalls::isForOneThread(descriptor);
    }
};

struct Trash
{
    MadeTree tree;
    GrantedFolder access{tree.path()};
    FileUrl home = FileUrl::fromPath(tree.path(), FileUrlKind::Folder);

    Trash()
    {
        for (const QByteArray &folder :
             {QByteArray(".local"), QByteArray(".local/share"), kTrash.chopped(1), kTrash + "files",
              kTrash + "info", QByteArray(".cache")})
            folderOf(kNobody, folder);
    }
    void folderOf(unsigned user, const QByteArray &path, unsigned mode = 0755) const
    {
        tree.makeFolder(path);
        tree.setOwner(path, user);
        tree.setMode(path, mode);
    }
    /// A read-only folder of the user's with something in it.
    void readOnlyFolder(const QByteArray &path, unsigned user = kNobody) const
    {
        folderOf(user, path);
        tree.makeFile(path + "/inside", 700);
        tree.setMode(path, 0555);
    }
    bool has(const QByteArray &path) const { return exists(tree.path(path)); }
    unsigned modeOf(const QByteArray &path) const
    {
        struct stat found
        {
        };
        return ::stat(tree.path(path).constData(), &found) == 0 ? found.st_mode & 07777 : 0;
    }

    /// Measures and cleans a slice as the ordinary user. "shown, removed, failures".
    QByteArray clean(SliceKind kind, const ExcludedPaths &excluded = {},
                     const SystemCalls &calls = hostSystemCalls(),
                     const std::stop_token &stop = {}) const
    {
        const auto work = [&] {
            std::fputs(cleaned(kind, excluded, ChildsCalls(calls), stop).constData(), stderr);
            return 0;
        };
        // The log comes the same way, before the result.
        const QByteArray text = runAsOwner(work);
        return text.sliced(text.lastIndexOf('\n') + 1);
    }

    /// What the work returns. A process that does not end normally fails the test.
    static QByteArray runAsOwner(const std::function<int()> &work)
    {
        const ChildOutcome outcome = runInChild(ChildUser::Nobody, work);
        if (outcome.exitCode != 0)
            QTest::qFail(outcome.errorText.constData(), __FILE__, __LINE__);
        return outcome.errorText;
    }

private:
    QByteArray cleaned(SliceKind kind, const ExcludedPaths &excluded, const SystemCalls &calls,
                       const std::stop_token &stop) const
    {
        const HomeLayout layout = surveyHome(calls, access, home, {});
        const FileUrls locations = *layout.locations(kind);
        qint64 shown = 0;
        for (const FileUrl &location : locations) {
            const auto rule =
                layout.isInTrash(location) ? ReadOnlyFolders::Emptied : ReadOnlyFolders::Stay;
            shown += measureFolder(calls, *access.anchoredPath(location), {}, 1, {rule}).bytes;
        }
        const auto record =
            Info::infoWithName(QString::fromUtf16(sliceCatalogue()[indexOf(kind)].name), locations);
        const CleaningReport report = performCleaning(
            calls,
            makeCleaningPlan(
                calls, access,
                slicesToClean(layout, {record}, consentTo(std::as_const(access), {record})),
                excluded),
            stop);
        return QByteArray::number(shown) + ", " + QByteArray::number(report.removedItems) + ", " +
               QByteArray::number(report.failureCount + report.refusalCount);
    }
};

} // namespace

/// What is special about emptying a freedesktop trash.
class TestTrashCleaning final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void removesReadOnlyFoldersInside();
    void leavesReadOnlyFoldersElsewhere();
    void leavesThoseOfOthers();
    void leavesTheRightsOfWhatIsKept();
    void leavesTheRightsOfWhatCannotBeListed();
    void leavesTheRightsOfWhatWasPutBack();
    void leavesTheRightsAroundWhatIsKeptByIdentity();
    void givesTheRightsBackWhereSomethingStays();
    void givesTheRightsBackWhenItIsStopped();
    void leavesTheRightsOfTheTrashItself();
    void saysWhenTheRightCannotBeGivenBack();
    void forgetsTheSizesOfWhatIsGone();
    void removesTheBookOfSizesFirst();
    void keepsTheBookOfSizesWithTheFolderThatItTellsOf();
    void keepsTheRecordsOfWhatStays();
    void keepsAllRecordsWhileNobodyKnowsWhatStays();
    void removesNoFolderCalledLikeTheBookOfSizes();
    void leavesTheFixedTrashAsItIs();
};

void TestTrashCleaning::removesReadOnlyFoldersInside()
{
    const Trash trash;
    trash.readOnlyFolder(kTrash + "files/album");
    trash.tree.setMode(kTrash + "files/album", 0755);
    trash.readOnlyFolder(kTrash + "files/album/deep");
    trash.tree.setMode(kTrash + "files/album", 0500);
    trash.tree.makeFile(kTrash + "info/album.trashinfo", 50);
    QCOMPARE(trash.clean(SliceKind::Trash), QByteArray("1450, 5, 0"));
    QVERIFY(!trash.has(kTrash + "files/album") && !trash.has(kTrash + "info/album.trashinfo"));
    QVERIFY(trash.has(kTrash + "files"));
}

void TestTrashCleaning::leavesReadOnlyFoldersElsewhere()
{
    const Trash trash;
    trash.readOnlyFolder(".cache/modules");
    QCOMPARE(trash.clean(SliceKind::Cache), QByteArray("0, 0, 1"));
    QVERIFY(trash.has(".cache/modules/inside"));
    QCOMPARE(trash.modeOf(".cache/modules"), 0555U);
}

void TestTrashCleaning::leavesThoseOfOthers()
{
    const Trash trash;
    trash.readOnlyFolder(kTrash + "files/root's", 0);
    const HookedSystem calls([](int, std::string_view name) {
        if (name == "setPermissions")
            qFatal("tried to change the rights");
        return 0;
    });
    QCOMPARE(trash.clean(SliceKind::Trash, {}, calls), QByteArray("0, 0, 1"));
    QVERIFY(trash.has(kTrash + "files/root's/inside"));
    QCOMPARE(trash.modeOf(kTrash + "files/root's"), 0555U);
}

void TestTrashCleaning::leavesTheRightsOfWhatIsKept()
{
    const Trash trash;
    const QByteArray album = kTrash + "files/album";
    trash.readOnlyFolder(album);
    trash.tree.setMode(album, 0755);
    trash.readOnlyFolder(album + "/deep");
    trash.tree.setMode(album, 0555);
    trash.readOnlyFolder(kTrash + "files/other");
    for (const char *name : {"/deep/inside", "/inside"}) {
        const FileUrl kept = trash.access.file(album + name);
        const WatchedFolder calls(trash.tree.path(album));
        trash.clean(SliceKind::Trash, excluding({kept}), calls);
        QVERIFY(trash.has(album + name));
        QCOMPARE(trash.modeOf(album), 0555U);
    }
    QVERIFY(!trash.has(kTrash + "files/other"));
}

void TestTrashCleaning::leavesTheRightsOfWhatCannotBeListed()
{
    const Trash trash;
    trash.readOnlyFolder(kTrash + "files/album");
    const WatchedFolder calls(trash.tree.path(kTrash + "files/album"), [] { return EIO; });
    trash.clean(SliceKind::Trash, {}, calls);
    QVERIFY(trash.has(kTrash + "files/album/inside"));
    QCOMPARE(trash.modeOf(kTrash + "files/album"), 0555U);
}

void TestTrashCleaning::leavesTheRightsOfWhatWasPutBack()
{
    const Trash trash;
    const QByteArray album = kTrash + "files/album";
    trash.readOnlyFolder(album);
    const WatchedFolder calls(trash.tree.path(album), [&] {
        ::rename(trash.tree.path(album).constData(), trash.tree.path(album + "2").constData());
        return 0;
    });
    const HomeLayout layout = surveyHome(hostSystemCalls(), trash.access, trash.home, {});
    const auto record =
        Info::infoWithName(QStringLiteral("Trash"), layout.locations(SliceKind::Trash));
    Trash::runAsOwner([&] {
        ::clean(trash.access, slicesToClean(layout, {record}, consentTo(trash.access, {record})),
                {}, ChildsCalls(calls));
        return 0;
    });
    QVERIFY(trash.has(album + "2/inside"));
    QCOMPARE(trash.modeOf(album + "2"), 0555U);
}

void TestTrashCleaning::leavesTheRightsAroundWhatIsKeptByIdentity()
{
    const Trash trash;
    trash.tree.makeFile("kept", 10);
    trash.folderOf(kNobody, kTrash + "files/album");
    std::filesystem::create_hard_link(native(trash.tree.path("kept")),
                                      native(trash.tree.path(kTrash + "files/album/other name")));
    trash.tree.setMode(kTrash + "files/album", 0555);
    const HookedSystem calls([](int, std::string_view name) {
        if (name == "setPermissions")
            qFatal("tried to change the rights");
        return 0;
    });
    trash.clean(SliceKind::Trash, excluding({trash.access.file("kept")}), calls);
    QVERIFY(trash.has(kTrash + "files/album/other name"));
}

void TestTrashCleaning::givesTheRightsBackWhereSomethingStays()
{
    const Trash trash;
    trash.readOnlyFolder(kTrash + "files/album");
    trash.clean(SliceKind::Trash, {}, FailingRemoval("inside"));
    QVERIFY(trash.has(kTrash + "files/album/inside"));
    QCOMPARE(trash.modeOf(kTrash + "files/album"), 0555U);
}

/// So deep that not all folders on the way are held open.
void TestTrashCleaning::givesTheRightsBackWhenItIsStopped()
{
    constexpr int kDepth = 30;
    const Trash trash;
    QByteArrayList folders{kTrash + "files/0"};
    for (int i = 1; i < kDepth; ++i)
        folders.append(folders.constLast() + "/1");
    for (const QByteArray &folder : folders)
        trash.folderOf(kNobody, folder);
    for (const char *name : {"/a", "/b"})
        trash.tree.makeFile(folders.constLast() + name);
    for (const QByteArray &folder : folders)
        trash.tree.setMode(folder, 0555);
    std::stop_source stop;
    const HookedSystem calls([&](int, std::string_view name) {
        if (name == "removeFile")
            stop.request_stop();
        return 0;
    });
    QCOMPARE(trash.clean(SliceKind::Trash, {}, calls, stop.get_token()), QByteArray("0, 1, 0"));
    for (const QByteArray &folder : folders)
        QCOMPARE(trash.modeOf(folder), 0555U);
}

void TestTrashCleaning::leavesTheRightsOfTheTrashItself()
{
    const Trash trash;
    trash.tree.makeFile(kTrash + "files/letter", 10);
    trash.tree.setMode(kTrash + "files", 0555);
    QCOMPARE(trash.clean(SliceKind::Trash), QByteArray("0, 0, 1"));
    QCOMPARE(trash.modeOf(kTrash + "files"), 0555U);
}

void TestTrashCleaning::saysWhenTheRightCannotBeGivenBack()
{
    const Trash trash;
    trash.readOnlyFolder(kTrash + "files/album");
    const HookedSystem calls(
        [](int, std::string_view name) { return name == "setPermissions" ? EPERM : 0; });
    QCOMPARE(trash.clean(SliceKind::Trash, {}, calls), QByteArray("700, 0, 1"));
    QVERIFY(trash.has(kTrash + "files/album/inside"));
}

void TestTrashCleaning::forgetsTheSizesOfWhatIsGone()
{
    const Trash trash;
    trash.folderOf(kNobody, kTrash + "files/album");
    trash.tree.makeFile(kTrash + "directorysizes", 90);
    trash.tree.makeFile(kTrash + "metadata", 90);
    QCOMPARE(trash.clean(SliceKind::Trash), QByteArray("0, 2, 0"));
    QVERIFY(!trash.has(kTrash + "directorysizes"));
    QVERIFY(trash.has(kTrash + "metadata")); // its meaning is unknown
}

void TestTrashCleaning::removesTheBookOfSizesFirst()
{
    const Trash trash;
    trash.folderOf(kNobody, kTrash + "files/album");
    trash.tree.makeFile(kTrash + "directorysizes", 90);
    const HookedSystem calls(
        [](int, std::string_view name) { return name == "removeFolder" ? EIO : 0; });
    trash.clean(SliceKind::Trash, {}, calls);
    QVERIFY(trash.has(kTrash + "files/album"));
    QVERIFY(!trash.has(kTrash + "directorysizes"));
}

void TestTrashCleaning::keepsTheBookOfSizesWithTheFolderThatItTellsOf()
{
    const Trash trash;
    trash.folderOf(kNobody, kTrash + "files/album");
    trash.tree.makeFile(kTrash + "directorysizes", 90);
    const ExcludedPaths itself = excluding({trash.access.folder(kTrash + "files")});
    QCOMPARE(trash.clean(SliceKind::Trash, itself), QByteArray("0, 0, 0"));
    QVERIFY(trash.has(kTrash + "directorysizes"));
    const ExcludedPaths inside = excluding({trash.access.folder(kTrash + "files/album")});
    QCOMPARE(trash.clean(SliceKind::Trash, inside), QByteArray("0, 1, 0"));
    QVERIFY(!trash.has(kTrash + "directorysizes"));
}

void TestTrashCleaning::keepsTheRecordsOfWhatStays()
{
    const Trash trash;
    trash.readOnlyFolder(kTrash + "files/root's", 0);
    for (const char *name : {"excluded", "locked", "gone"})
        trash.tree.makeFile(kTrash + "files/" + name, 10);
    for (const char *name : {"root's", "excluded", "locked", "gone", "never there"})
        trash.tree.makeFile(kTrash + "info/" + name + ".trashinfo", 10);
    trash.tree.makeFile(kTrash + "info/excluded", 10); // no trash info file
    const FailingRemoval calls("locked");
    trash.clean(SliceKind::Trash, excluding({trash.access.file(kTrash + "files/excluded")}), calls);
    for (const char *name : {"root's", "excluded", "locked"})
        QVERIFY2(trash.has(kTrash + "info/" + name + ".trashinfo"), name);
    for (const char *name : {"gone.trashinfo", "never there.trashinfo", "excluded"})
        QVERIFY2(!trash.has(kTrash + "info/" + name), name);
}

void TestTrashCleaning::keepsAllRecordsWhileNobodyKnowsWhatStays()
{
    const Trash trash;
    trash.tree.makeFile(kTrash + "files/item", 10);
    trash.tree.makeFile(kTrash + "info/item.trashinfo", 10);
    trash.tree.setMode(kTrash + "files", 0000);
    trash.clean(SliceKind::Trash);
    QVERIFY(trash.has(kTrash + "info/item.trashinfo"));
}

void TestTrashCleaning::removesNoFolderCalledLikeTheBookOfSizes()
{
    const Trash trash;
    trash.folderOf(kNobody, kTrash + "directorysizes");
    trash.tree.makeFile(kTrash + "directorysizes/letter", 90);
    QCOMPARE(trash.clean(SliceKind::Trash), QByteArray("0, 0, 1"));
    QVERIFY(trash.has(kTrash + "directorysizes/letter"));
}

void TestTrashCleaning::leavesTheFixedTrashAsItIs()
{
    const Trash trash;
    trash.folderOf(kNobody, "Library");
    trash.folderOf(kNobody, "Library/Caches");
    trash.folderOf(kNobody, ".Trash");
    trash.readOnlyFolder(".Trash/album");
    trash.tree.makeFile(kTrash + "directorysizes", 90);
    QCOMPARE(trash.clean(SliceKind::Trash), QByteArray("0, 0, 1"));
    QVERIFY(trash.has(".Trash/album/inside") && trash.has(kTrash + "directorysizes"));
    QCOMPARE(trash.modeOf(".Trash/album"), 0555U);
}

VANTOR_TEST_MAIN(TestTrashCleaning)
#include "tst_TrashCleaning.moc"
