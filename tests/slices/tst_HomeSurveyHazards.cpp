#include "tests/slices/HomeKit.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ForwardingSystemCalls.h"
#include "tests/support/OwnMounts.h"
#include "tests/support/TestMain.h"

#include <cerrno>

namespace {

/// Lets a cleaning believe that a disk is waited for by nobody, so that it works on one thread: a
/// child of a process that has several is to start none.
class OneThreadCalls final : public ForwardingSystemCalls
{
public:
    bool isInMemory(int) const override { return true; }
};

/// One folder is a volume of its own: it opens like any, its device number alone tells.
class SubVolumeCalls final : public ForwardingSystemCalls
{
public:
    explicit SubVolumeCalls(const QByteArray &folder)
    {
        const auto opened = ForwardingSystemCalls::openRoot(folder.constData());
        m_inode = ForwardingSystemCalls::statusOf(opened->get())->inode;
    }

    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        auto status = ForwardingSystemCalls::statusOf(descriptor);
        if (status && status->inode == m_inode)
            ++status->device;
        return status;
    }

private:
    std::uint64_t m_inode = 0;
};

} // namespace

/// What is not found, because it lies behind something or cannot be read.
class TestHomeSurveyHazards final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsNoLink_data();
    void followsNoLink();
    void leavesMountsAlone();
    void leavesSubVolumesAlone();
    void findsNothingItMayNotRead();
};

void TestHomeSurveyHazards::followsNoLink_data()
{
    QTest::addColumn<QByteArray>("link");
    const QByteArray iTunes = "AppData/Roaming/Apple Computer/iTunes";
    for (const QByteArray &path : QByteArrayList{
             ".local",
             ".local/share",
             ".local/share/Trash",
             ".local/share/Trash/files",
             ".local/share/Trash/info",
             ".local/share/Trash/expunged",
             ".cache",
             ".local/share/xorg",
             ".local/share/app",
             ".local/share/app/logs",
             ".npm",
             ".npm/_logs",
             ".config",
             ".config/editor",
             ".config/editor/logs",
             ".local/state/player/logs",
             "Downloads",
             "snap",
             "snap/tool/common",
             "snap/tool/common/.local/share/Trash",
             ".var/app/org.a.A",
             ".var/app/org.a.A/cache",
             ".var/app/org.a.A/data/Trash/files",
             ".var/app/org.a.A/config/a/logs",
             ".wine/drive_c/users/anna",
             ".wine/drive_c/users/anna/" + iTunes,
             ".wine/drive_c/users/anna/" + iTunes + "/iPad Software Updates",
             ".claws-mail/mimetmp",
             ".sylpheed-2.0",
             ".sylpheed-2.0/mimetmp",
             ".mozilla/firefox/ab",
             ".mozilla/firefox/ab/cookies.sqlite",
             ".config/chromium",
             ".config/chromium/Default",
             ".config/chromium/Default/Network",
             ".var/app/com.brave.Browser/config/BraveSoftware",
         })
        QTest::newRow(path.constData()) << path;
}

/// Exactly what lies behind it is no longer found.
void TestHomeSurveyHazards::followsNoLink()
{
    QFETCH(const QByteArray, link);
    QByteArrayList everything = kPlainHome;
    everything += {"snap/tool/common/.cache/x",
                   "snap/tool/common/.local/share/Trash/files/x",
                   ".var/app/org.a.A/cache/x",
                   ".var/app/org.a.A/data/Trash/files/x",
                   ".var/app/org.a.A/config/a/logs/x",
                   ".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser/Default/History",
                   ".wine/drive_c/users/anna/AppData/Roaming/Apple Computer/iTunes/"
                   "iPad Software Updates/x",
                   ".claws-mail/mimetmp/x",
                   ".sylpheed-2.0/mimetmp/x",
                   ".mozilla/firefox/ab/cookies.sqlite",
                   ".config/chromium/Default/Network/Cookies"};
    const MadeHome home(everything);
    home.nameFirefoxProfiles({"ab"});
    const Found before = locationsOf(home, home.survey());
    Found expected = before;
    for (auto &[kind, paths] : expected)
        paths.removeIf([&](const QByteArray &path) { return (path + '/').startsWith(link + '/'); });
    std::erase_if(expected, [](const auto &found) { return found.second.isEmpty(); });
    QVERIFY(expected != before); // or the row would say nothing
    if (link == ".config")
        expected.erase(SliceKind::Downloads); // nobody knows any more what the user calls it

    std::filesystem::rename(native(home.path(link)), native(home.outside("moved")));
    home.link(link, home.outside("moved"));
    QCOMPARE(locationsOf(home, home.survey()), expected);
}

/// A folder of documents that a desktop shows below the cache, and a cache that is a disk itself.
void TestHomeSurveyHazards::leavesMountsAlone()
{
    MadeTree tree;
    for (const char *folder :
         {".cache", ".cache/doc", ".var", ".var/app", ".var/app/org.a.A", ".var/app/org.a.A/cache"})
        tree.makeFolder(folder);
    tree.makeFile(".cache/old");
    const auto work = [&tree] {
        const OwnMounts mounts(tree);
        mounts.mountMemory(".cache/doc");
        mounts.mountMemory(".var/app/org.a.A/cache");
        makeFile(tree.path(".cache/doc/letter.odt"));
        makeFile(tree.path(".var/app/org.a.A/cache/item"));
        const GrantedFolder access(tree.path());
        const HomeLayout layout = surveyHome(
            hostSystemCalls(), access, FileUrl::fromPath(tree.path(), FileUrlKind::Folder), {});
        const FileUrls caches = *layout.locations(SliceKind::Cache);
        clean(access, {contentsOf(caches)}, {}, OneThreadCalls());
        const bool areLeft = exists(tree.path(".cache/doc/letter.odt")) &&
                             exists(tree.path(".var/app/org.a.A/cache/item"));
        const bool isGone = !exists(tree.path(".cache/old"));
        return mounts.areMade() && caches.size() == 1 && areLeft && isGone ? 0 : 1;
    };
    QCOMPARE(runInChild(ChildUser::Same, work).exitCode, 0);
}

void TestHomeSurveyHazards::leavesSubVolumesAlone()
{
    const MadeHome home(kPlainHome);
    const SubVolumeCalls calls(home.path(".cache"));
    Found expected = kPlainLocations;
    expected.erase(SliceKind::Cache);
    QCOMPARE(locationsOf(home, home.survey({}, calls)), expected);
}

/// Whichever call fails, the survey ends and finds no more than it would have found.
void TestHomeSurveyHazards::findsNothingItMayNotRead()
{
    const MadeHome home(kPlainHome);
    ForwardingSystemCalls calls;
    home.survey({}, calls);
    const int count = calls.callCount();
    QVERIFY(count > 20);
    for (int number = 2; number <= count; ++number) {
        calls.setHook(ForwardingSystemCalls::failing(number, EIO));
        for (const auto &[kind, paths] : locationsOf(home, home.survey({}, calls))) {
            for (const QByteArray &path : paths)
                QVERIFY2(kPlainLocations.at(kind).contains(path), path);
        }
    }
}

VANTOR_TEST_MAIN(TestHomeSurveyHazards)
#include "tst_HomeSurveyHazards.moc"
