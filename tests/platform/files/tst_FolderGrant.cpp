#include "platform/files/FolderGrant.h"
#include "platform/system/FileStatus.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemResult.h"
#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The system, except for the calls whose results the test changes.
class BentCalls final : public ForwardingSystemCalls
{
public:
    std::function<void(FileIdentity &)> bendIdentity;
    int openError = 0;
    int identityError = 0;
    int statusError = 0;

    SystemResult<FileDescriptor> openRoot(const char *path) const override
    {
        return openError != 0 ? tl::unexpected(openError) : ForwardingSystemCalls::openRoot(path);
    }
    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        return statusError != 0 ? tl::unexpected(statusError)
                                : ForwardingSystemCalls::statusOf(descriptor);
    }
    SystemResult<FileIdentity> identityOf(int descriptor) const override
    {
        if (identityError != 0)
            return tl::unexpected(identityError);
        auto identity = ForwardingSystemCalls::identityOf(descriptor);
        if (identity && bendIdentity)
            bendIdentity(*identity);
        return identity;
    }
};

void forgetHandle(FileIdentity &identity)
{
    identity.handle.clear();
}

void forgetBirth(FileIdentity &identity)
{
    identity.birthSeconds = 0;
    identity.birthNanoseconds = 0;
}

/// The reason why the grant does not lead to a folder; "none" when it does.
QByteArray failureOf(const QByteArray &grant, const SystemCalls &calls = hostSystemCalls())
{
    const auto folder = resolveGrant(calls, grant);
    return folder ? "none" : nameOf(folder.error());
}

} // namespace

class TestFolderGrant final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void leadsToTheGrantedFolder_data();
    void leadsToTheGrantedFolder();
    void isTheSameForEverySpellingOfThePath();
    void namesTheFolderThatALinkLedTo();
    void refusesWhatIsNoFolder_data();
    void refusesWhatIsNoFolder();
    void refusesAFolderThatCouldNotBeToldFromANewOne();

    void saysGoneWhenTheFolderWasMoved();
    void saysReplacedForWhatStandsInItsPlace_data();
    void saysReplacedForWhatStandsInItsPlace();
    void tellsAFolderMadeAnewByAnyTrait_data();
    void tellsAFolderMadeAnewByAnyTrait();
    void getsAlongWithWhatBothTimesKnow_data();
    void getsAlongWithWhatBothTimesKnow();
    void saysUnreadableWithoutTheRightToRead();
    void givesAReasonForEveryError_data();
    void givesAReasonForEveryError();
    void refusesRootOnSomebodyElsesFolder();
    void staysOnTheFolderOnceOpened();

private:
    QByteArray path(const QByteArray &name) const { return m_scratch->path(name); }
    QByteArray grantOf(const QByteArray &name) const;

    std::unique_ptr<ScratchFolder> m_scratch;
};

void TestFolderGrant::init()
{
    m_scratch = std::make_unique<ScratchFolder>();
    m_scratch->makeFolder("anna");
}

void TestFolderGrant::cleanup()
{
    m_scratch.reset();
}

QByteArray TestFolderGrant::grantOf(const QByteArray &name) const
{
    return makeGrant(hostSystemCalls(), path(name)).value_or(QByteArray());
}

void TestFolderGrant::leadsToTheGrantedFolder_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addRow("blank") << QByteArray("anna's home");
    QTest::addRow("newline") << QByteArray("an\nna");
    QTest::addRow("umlaut") << QByteArray("J\xc3\xb6rg");
    QTest::addRow("invalid UTF-8") << QByteArray("\xff\xfe");
    QTest::addRow("percent") << QByteArray("%2F");
    QTest::addRow("long") << QByteArray(255, 'a');
}

void TestFolderGrant::leadsToTheGrantedFolder()
{
    QFETCH(QByteArray, name);
    m_scratch->makeFolder(name);
    const auto folder = resolveGrant(hostSystemCalls(), grantOf(name));
    QVERIFY(folder);
    QCOMPARE(folder->url.path(), path(name));
    QVERIFY(folder->url.isFolder());

    struct stat open
    {
    };
    struct stat named
    {
    };
    QCOMPARE(::fstat(folder->folder->get(), &open), 0);
    QCOMPARE(::stat(path(name).constData(), &named), 0);
    QCOMPARE(open.st_ino, named.st_ino);
}

void TestFolderGrant::isTheSameForEverySpellingOfThePath()
{
    m_scratch->makeLink("link", "anna");
    const QByteArray grant = grantOf("anna");
    QVERIFY(!grant.isEmpty());
    QCOMPARE(grantOf("anna"), grant);
    QCOMPARE(grantOf("anna/"), grant);
    QCOMPARE(grantOf(".//anna/../anna"), grant);
    QCOMPARE(grantOf("link"), grant);
}

void TestFolderGrant::namesTheFolderThatALinkLedTo()
{
    m_scratch->makeFolder("annabel");
    m_scratch->makeLink("link", "anna");
    const QByteArray grant = grantOf("link");
    QCOMPARE(::unlink(path("link").constData()), 0);
    m_scratch->makeLink("link", "annabel");
    const auto folder = resolveGrant(hostSystemCalls(), grant);
    QVERIFY(folder);
    QCOMPARE(folder->url.path(), path("anna"));
}

void TestFolderGrant::refusesWhatIsNoFolder_data()
{
    QTest::addColumn<QByteArray>("picked");
    QTest::addColumn<int>("error");
    QTest::addRow("nothing there") << QByteArray("%/nobody") << ENOENT;
    QTest::addRow("a file") << QByteArray("%/file") << ENOTDIR;
    QTest::addRow("below a file") << QByteArray("%/file/anna") << ENOTDIR;
    QTest::addRow("links in a circle") << QByteArray("%/circle") << ELOOP;
    QTest::addRow("a relative path") << QByteArray("anna") << EINVAL;
    QTest::addRow("no path") << QByteArray() << EINVAL;
    QTest::addRow("a path with a NUL") << QByteArray("/tmp\0/anna", 10) << EINVAL;
    QTest::addRow("the whole system") << QByteArray("/") << EPERM;
    QTest::addRow("the whole system, by a detour") << QByteArray("%/..//../../../..") << EPERM;
}

void TestFolderGrant::refusesWhatIsNoFolder()
{
    QFETCH(QByteArray, picked);
    m_scratch->makeFile("file");
    m_scratch->makeLink("circle", "circle");
    const auto grant = makeGrant(hostSystemCalls(), picked.replace("%", m_scratch->path()));
    QVERIFY(!grant);
    QTEST(grant.error(), "error");
}

void TestFolderGrant::refusesAFolderThatCouldNotBeToldFromANewOne()
{
    BentCalls calls;
    calls.bendIdentity = [](FileIdentity &identity) {
        forgetHandle(identity);
        forgetBirth(identity);
    };
    const auto grant = makeGrant(calls, path("anna"));
    QVERIFY(!grant);
    QCOMPARE(grant.error(), EOPNOTSUPP);
}

void TestFolderGrant::saysGoneWhenTheFolderWasMoved()
{
    const QByteArray grant = grantOf("anna");
    QCOMPARE(::rename(path("anna").constData(), path("annabel").constData()), 0);
    QCOMPARE(failureOf(grant), QByteArray("gone"));
    QCOMPARE(::rename(path("annabel").constData(), path("anna").constData()), 0);
    QCOMPARE(failureOf(grant), QByteArray("none"));
}

void TestFolderGrant::saysReplacedForWhatStandsInItsPlace_data()
{
    QTest::addColumn<QString>("what");
    for (const char *what : {"another folder", "a folder made anew", "a link to another folder",
                             "a link to the folder itself", "a file", "a link above it"})
        QTest::addRow("%s", what) << QString::fromLatin1(what);
}

void TestFolderGrant::saysReplacedForWhatStandsInItsPlace()
{
    QFETCH(QString, what);
    m_scratch->makeFolder("homes");
    m_scratch->makeFolder("homes/anna");
    m_scratch->makeFolder("other");
    const QByteArray grant = grantOf("homes/anna");
    const QByteArray place = path("homes/anna");
    if (what == QStringLiteral("a link above it")) {
        QCOMPARE(::rename(path("homes").constData(), path("moved").constData()), 0);
        m_scratch->makeLink("homes", "moved");
    } else if (what == QStringLiteral("a folder made anew")) {
        QCOMPARE(::rmdir(place.constData()), 0);
        m_scratch->makeFolder("homes/anna");
    } else {
        QCOMPARE(::rename(place.constData(), path("moved").constData()), 0);
        if (what == QStringLiteral("another folder"))
            QCOMPARE(::rename(path("other").constData(), place.constData()), 0);
        else if (what == QStringLiteral("a link to another folder"))
            m_scratch->makeLink("homes/anna", "../other");
        else if (what == QStringLiteral("a link to the folder itself"))
            m_scratch->makeLink("homes/anna", "../moved");
        else
            m_scratch->makeFile("homes/anna");
    }
    QCOMPARE(failureOf(grant), QByteArray("replaced"));
}

void TestFolderGrant::tellsAFolderMadeAnewByAnyTrait_data()
{
    QTest::addColumn<std::function<void(FileIdentity &)>>("change");
    using Change = std::function<void(FileIdentity &)>;
    QTest::addRow("handle, inode number used again")
        << Change([](FileIdentity &identity) { identity.handle += 'x'; });
    QTest::addRow("file system") << Change([](FileIdentity &identity) { ++identity.fileSystem; });
    QTest::addRow("inode") << Change([](FileIdentity &identity) { ++identity.inode; });
    QTest::addRow("birth second") << Change(
        [](FileIdentity &identity) { ++identity.birthSeconds; });
    QTest::addRow("birth nanosecond")
        << Change([](FileIdentity &identity) { ++identity.birthNanoseconds; });
    QTest::addRow("birth, no handles") << Change([](FileIdentity &identity) {
        forgetHandle(identity);
        ++identity.birthNanoseconds;
    });
    QTest::addRow("handle, no birth times") << Change([](FileIdentity &identity) {
        forgetBirth(identity);
        identity.handle += 'x';
    });
    QTest::addRow("neither known") << Change([](FileIdentity &identity) {
        forgetHandle(identity);
        forgetBirth(identity);
    });
}

void TestFolderGrant::tellsAFolderMadeAnewByAnyTrait()
{
    QFETCH(std::function<void(FileIdentity &)>, change);
    const QByteArray grant = grantOf("anna");
    BentCalls calls;
    calls.bendIdentity = change;
    QCOMPARE(failureOf(grant, calls), QByteArray("replaced"));
}

void TestFolderGrant::getsAlongWithWhatBothTimesKnow_data()
{
    QTest::addColumn<std::function<void(FileIdentity &)>>("granting");
    QTest::addColumn<std::function<void(FileIdentity &)>>("resolving");
    QTest::addColumn<QByteArray>("failure");
    using Change = std::function<void(FileIdentity &)>;
    const Change newDevice = [](FileIdentity &identity) { ++identity.device; };
    QTest::addRow("no handles") << Change(forgetHandle) << Change(forgetHandle)
                                << QByteArray("none");
    QTest::addRow("no birth times")
        << Change(forgetBirth) << Change(forgetBirth) << QByteArray("none");
    QTest::addRow("handles later") << Change(forgetHandle) << Change() << QByteArray("none");
    QTest::addRow("birth times no more") << Change() << Change(forgetBirth) << QByteArray("none");
    QTest::addRow("another device number") << Change() << newDevice << QByteArray("none");
    QTest::addRow("nothing in common")
        << Change(forgetHandle) << Change(forgetBirth) << QByteArray("replaced");
}

void TestFolderGrant::getsAlongWithWhatBothTimesKnow()
{
    QFETCH(std::function<void(FileIdentity &)>, granting);
    QFETCH(std::function<void(FileIdentity &)>, resolving);
    BentCalls calls;
    calls.bendIdentity = granting;
    const auto grant = makeGrant(calls, path("anna"));
    QVERIFY(grant);
    calls.bendIdentity = resolving;
    QTEST(failureOf(*grant, calls), "failure");
}

void TestFolderGrant::saysUnreadableWithoutTheRightToRead()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QCOMPARE(::chown(path("anna").constData(), kNobody, kNobody), 0);
    const auto outcome = runInChild(ChildUser::Nobody, [this] {
        const QByteArray grant = grantOf("anna");
        if (failureOf(grant) != "none")
            return 1;
        if (::chmod(path("anna").constData(), 0) != 0)
            return 2;
        return failureOf(grant) == "unreadable" ? 0 : 3;
    });
    QCOMPARE(outcome.exitCode, 0);
}

void TestFolderGrant::givesAReasonForEveryError_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QByteArray>("failure");
    QTest::addRow("ENOENT") << ENOENT << QByteArray("gone");
    QTest::addRow("ESTALE") << ESTALE << QByteArray("gone");
    QTest::addRow("ENOTDIR") << ENOTDIR << QByteArray("replaced");
    QTest::addRow("ELOOP") << ELOOP << QByteArray("replaced");
    QTest::addRow("EACCES") << EACCES << QByteArray("unreadable");
    QTest::addRow("EIO") << EIO << QByteArray("unreadable");
    QTest::addRow("EMFILE") << EMFILE << QByteArray("unreadable");
}

void TestFolderGrant::givesAReasonForEveryError()
{
    QFETCH(int, error);
    const QByteArray grant = grantOf("anna");
    for (int BentCalls::*failing :
         {&BentCalls::openError, &BentCalls::identityError, &BentCalls::statusError}) {
        BentCalls calls;
        calls.*failing = error;
        QTEST(failureOf(grant, calls), "failure");
        const auto made = makeGrant(calls, path("anna"));
        QVERIFY(!made);
        QCOMPARE(made.error(), error);
    }
}

void TestFolderGrant::refusesRootOnSomebodyElsesFolder()
{
    if (::geteuid() != 0)
        return; // the check is about root alone
    const QByteArray grant = grantOf("anna");
    QCOMPARE(::chown(path("anna").constData(), kNobody, kNobody), 0);
    QCOMPARE(failureOf(grant), QByteArray("foreign"));
    const auto made = makeGrant(hostSystemCalls(), path("anna"));
    QVERIFY(!made);
    QCOMPARE(made.error(), EPERM);
}

void TestFolderGrant::staysOnTheFolderOnceOpened()
{
    m_scratch->makeFolder("anna/inside");
    const auto folder = resolveGrant(hostSystemCalls(), grantOf("anna"));
    QVERIFY(folder);
    QCOMPARE(::rename(path("anna").constData(), path("moved").constData()), 0);
    m_scratch->makeFolder("anna");
    QCOMPARE(::faccessat(folder->folder->get(), "inside", F_OK, 0), 0);
}

VANTOR_TEST_MAIN(TestFolderGrant)
#include "tst_FolderGrant.moc"
