#include "platform/system/HostSystemCalls.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/disk/MountNamespace.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/Must.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>

namespace {

bool bindMount(const QByteArray &from, const QByteArray &to)
{
    return ::mount(from.constData(), to.constData(), nullptr, MS_BIND, nullptr) == 0;
}

/// Whether the flag was set, or taken away.
enum class Flag { On, Off };
bool setFlag(const QByteArray &path, int flag, Flag wanted)
{
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC));
    int flags = 0;
    if (::ioctl(file.get(), FS_IOC_GETFLAGS, &flags) != 0)
        return false;
    flags = wanted == Flag::On ? flags | flag : flags & ~flag;
    return ::ioctl(file.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

void own(const QByteArray &path, uid_t user, mode_t mode)
{
    must(::lchown(path.constData(), user, user) == 0 && ::chmod(path.constData(), mode) == 0,
         path.constData());
}

mode_t modeOf(const QByteArray &path)
{
    struct stat found
    {
    };
    ::lstat(path.constData(), &found);
    return found.st_mode & 07777;
}

/// Runs a part of a test in a process of its own, for changes that cannot be undone: other mounts,
/// another user, smaller limits. The part returns what is wrong, or nothing; this function returns
/// the same.
QByteArray inChild(ChildUser user, const std::function<QByteArray()> &piece)
{
    const ChildOutcome outcome = runInChild(user, [&] {
        const QByteArray words = piece();
        std::fputs(words.constData(), stderr);
        return words.isEmpty() ? 0 : 1;
    });
    return outcome.exitCode == 0 ? QByteArray() : "wrong: " + outcome.errorText;
}

/// The errno under which a path is reported, 0 when it is not.
int reported(const CleaningReport &report, const QByteArray &path)
{
    for (const CleaningFailure &failure : report.failures) {
        if (failure.path == path)
            return failure.error;
    }
    for (const CleaningRefusal &refusal : report.refusals) {
        if (refusal.path == path)
            return refusal.error;
    }
    return 0;
}

CleaningReport cleanDownloads(const QByteArray &home, const FileUrls &excluded = {})
{
    const LogRecorder silenced;
    const GrantedFolder granted(home);
    return clean(granted, {contentsOf({granted.folder("Downloads")})}, excluding(excluded));
}

QByteArray text(const std::set<QByteArray> &paths)
{
    return QByteArrayList(paths.begin(), paths.end()).join(' ');
}

} // namespace

class TestCleaningHazards final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavesMountsAlone();
    void refusesAPlaceThatIsAMount();
    void findsAnExclusionBelowAMount();
    void leavesLockedItems_data();
    void leavesLockedItems();
    void leavesWhatAnOrdinaryUserMayNotRemove();
};

void TestCleaningHazards::leavesMountsAlone()
{
    const CleaningGround scratch;
    const QByteArray downloads = scratch / "home/Downloads";
    for (const char *name : {"tmp/a", "deep/bind/b", "deep/c", "file", "d"})
        makeFile(downloads + '/' + name);
    makeFile(scratch / "outside/precious");
    const QByteArray wrong = inChild(ChildUser::Same, [&]() -> QByteArray {
        if (!enterMountNamespace() ||
            ::mount("none", (downloads + "/tmp").constData(), "tmpfs", 0, nullptr) != 0 ||
            !bindMount(scratch / "outside", downloads + "/deep/bind") ||
            !bindMount(scratch / "outside/precious", downloads + "/file"))
            return "cannot mount";
        makeFile(downloads + "/tmp/mounted");
        const CleaningReport report = cleanDownloads(scratch / "home");
        if (tree(downloads) != std::set<QByteArray>({"deep", "deep/bind", "deep/bind/precious",
                                                     "file", "tmp", "tmp/mounted"}))
            return "left: " + text(tree(downloads));
        if (report.failures.size() + report.refusals.size() != 3)
            return "told of too much or too little";
        if (reported(report, downloads + "/tmp") != EXDEV ||
            reported(report, downloads + "/deep/bind") != EXDEV ||
            reported(report, downloads + "/file") != EBUSY)
            return "did not tell";
        return {};
    });
    QCOMPARE(wrong, QByteArray());
    QVERIFY(exists(scratch / "outside/precious"));
    QVERIFY(exists(downloads + "/tmp/a"));
}

void TestCleaningHazards::refusesAPlaceThatIsAMount()
{
    const CleaningGround scratch;
    makeFile(scratch / "home/Downloads/a");
    makeFile(scratch / "outside/precious");
    makeFolder(scratch / "outside/inside");
    const QByteArray wrong = inChild(ChildUser::Same, [&]() -> QByteArray {
        if (!enterMountNamespace() || !bindMount(scratch / "outside", scratch / "home/Downloads"))
            return "cannot mount";
        const GrantedFolder granted(scratch / "home");
        const FileUrls locations{granted.folder("Downloads"), granted.folder("Downloads/inside")};
        if (!makeCleaningPlan(hostSystemCalls(), granted, {contentsOf(locations)}, {})
                 .locations()
                 .empty())
            return "planned it";
        const CleaningReport report = cleanDownloads(scratch / "home");
        if (reported(report, scratch / "home/Downloads") != EXDEV ||
            report.refusals.first().reason != RefusalReason::OtherFileSystem)
            return "did not refuse";
        return {};
    });
    QCOMPARE(wrong, QByteArray());
    QVERIFY(exists(scratch / "outside/precious"));
}

void TestCleaningHazards::findsAnExclusionBelowAMount()
{
    const CleaningGround scratch;
    const QByteArray downloads = scratch / "home/Downloads";
    for (const char *name : {"mount/x", "twin/kept", "other"})
        makeFile(downloads + '/' + name);
    makeFile(scratch / "outside/kept");
    const QByteArray wrong = inChild(ChildUser::Same, [&]() -> QByteArray {
        if (!enterMountNamespace() || !bindMount(scratch / "outside", downloads + "/mount"))
            return "cannot mount";
        const FileUrl kept = FileUrl::fromPath(downloads + "/mount/kept", FileUrlKind::File);
        const CleaningReport report = cleanDownloads(scratch / "home", {kept});
        if (tree(downloads) != std::set<QByteArray>({"mount", "mount/kept"}))
            return "left: " + text(tree(downloads));
        return reported(report, downloads + "/mount") == EXDEV ? "" : "did not tell";
    });
    QCOMPARE(wrong, QByteArray());
}

void TestCleaningHazards::leavesLockedItems_data()
{
    QTest::addColumn<int>("flag");
    QTest::addRow("immutable") << FS_IMMUTABLE_FL;
    QTest::addRow("append only") << FS_APPEND_FL;
}

void TestCleaningHazards::leavesLockedItems()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(int, flag);
    const CleaningGround scratch(CleaningGround::Medium::Disk);
    const QByteArray downloads = scratch / "home/Downloads";
    for (const char *name : {"locked", "free", "folder/in locked", "other/free", "also/locked"})
        makeFile(downloads + '/' + name);
    const QByteArrayList locked{downloads + "/locked", downloads + "/folder",
                                downloads + "/also/locked"};
    for (const QByteArray &path : locked)
        QVERIFY2(setFlag(path, flag, Flag::On),
                 "locking files needs an administrator and a file system "
                 "that keeps flags");
    const CleaningReport report = cleanDownloads(scratch / "home");
    for (const QByteArray &path : locked)
        setFlag(path, flag, Flag::Off);
    QCOMPARE(tree(downloads),
             std::set<QByteArray>({"locked", "folder", "folder/in locked", "also", "also/locked"}));
    QCOMPARE(report.failures.size(), 3);
    QCOMPARE(reported(report, downloads + "/locked"), EPERM);
    QCOMPARE(reported(report, downloads + "/folder/in locked"), EPERM);
    QCOMPARE(reported(report, downloads + "/also/locked"), EPERM);
}

void TestCleaningHazards::leavesWhatAnOrdinaryUserMayNotRemove()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    const CleaningGround scratch;
    const QByteArray downloads = scratch / "home/Downloads";
    for (const char *name : {"mine", "foreign", "sticky/foreign", "sticky/mine", "fixed/mine",
                             "closed/mine", "blind/mine"})
        makeFile(downloads + '/' + name);
    ::chmod(scratch.path().constData(), 0755);
    own(downloads, kNobody, 0700);
    own(downloads + "/mine", kNobody, 0000);
    own(downloads + "/sticky", 0, 01777);
    own(downloads + "/sticky/mine", kNobody, 0600);
    own(downloads + "/fixed", kNobody, 0555);
    own(downloads + "/closed", kNobody, 0000);
    own(downloads + "/blind", kNobody, 0300);
    const QByteArray wrong = inChild(ChildUser::Nobody, [&]() -> QByteArray {
        const CleaningReport report = cleanDownloads(scratch / "home");
        if (report.failures.size() + report.refusals.size() != 4)
            return "told of too much or too little";
        if (reported(report, downloads + "/sticky/foreign") != EPERM ||
            reported(report, downloads + "/fixed/mine") != EACCES ||
            reported(report, downloads + "/closed") != EACCES ||
            reported(report, downloads + "/blind") != EACCES)
            return "did not tell";
        return {};
    });
    QCOMPARE(wrong, QByteArray());
    QCOMPARE(tree(downloads),
             std::set<QByteArray>({"sticky", "sticky/foreign", "fixed", "fixed/mine", "closed",
                                   "closed/mine", "blind", "blind/mine"}));
    QCOMPARE(modeOf(downloads + "/fixed"), mode_t(0555));
    QCOMPARE(modeOf(downloads + "/closed"), mode_t(0));
    QCOMPARE(modeOf(downloads + "/blind"), mode_t(0300));
}

VANTOR_TEST_MAIN(TestCleaningHazards)
#include "tst_CleaningHazards.moc"
