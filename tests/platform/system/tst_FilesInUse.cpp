#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"
#include "tests/support/disk/MountNamespace.h"
#include "tests/support/disk/OpenedFolder.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/OtherProcess.h"
#include "tests/support/run/TestMain.h"

#include <QFile>
#include <QStandardPaths>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

using Work = std::function<void(const QByteArray &path)>;

int open(const QByteArray &path)
{
    const int file = ::open(path.constData(), O_RDWR | O_CLOEXEC);
    must(file >= 0, "an open file");
    return file;
}

void hold(const QByteArray &path)
{
    open(path);
}

void holdFolder(const QByteArray &path)
{
    must(::open(path.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC) >= 0, "an open folder");
}

void map(const QByteArray &path)
{
    const int file = open(path);
    must(::mmap(nullptr, 1, PROT_READ, MAP_SHARED, file, 0) != MAP_FAILED, "a mapped file");
    ::close(file);
}

void workIn(const QByteArray &path)
{
    must(::chdir(path.constData()) == 0, "a current folder");
}

void beShutInto(const QByteArray &path)
{
    must(::chroot(path.constData()) == 0, "a root folder");
}

void listenAt(const QByteArray &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    must(path.size() < qsizetype(sizeof address.sun_path), "a short path");
    std::strcpy(address.sun_path, path.constData());
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    must(::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 &&
             ::listen(socket, 1) == 0,
         "a socket");
}

void holdDeleted(const QByteArray &path)
{
    hold(path);
    must(::unlink(path.constData()) == 0, "a deleted file");
}

void mapDeleted(const QByteArray &path)
{
    map(path);
    must(::unlink(path.constData()) == 0, "a deleted file");
}

void workInDeleted(const QByteArray &path)
{
    workIn(path);
    must(::rmdir(path.constData()) == 0, "a deleted folder");
}

/// As in a sandbox: the folder of the file is seen elsewhere, and nowhere else.
void holdUnderAnotherName(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    must(enterMountNamespace() &&
             ::mount(path.first(slash).constData(), "/mnt", nullptr, MS_BIND, nullptr) == 0,
         "another name");
    hold("/mnt/" + path.sliced(slash + 1));
}

} // namespace

Q_DECLARE_METATYPE(Work)

/// What other processes are using in a folder.
class TestFilesInUse final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void findsWhatIsUsed_data();
    void findsWhatIsUsed();
    void findsAMappedFileWithALineEndInItsName();
    void findsARunningProgram();
    void findsAProcessThatIsShutInThere();
    void findsNothingThatIsNotUsed_data();
    void findsNothingThatIsNotUsed();
    void doesNotCountItself();
    void findsAFolderThatWasMoved();
    void namesEachOnce();
    void tellsWhenItCannotLook();

private:
    QByteArrayList inUse() const
    {
        const FileDescriptor folder = openedFolder(m_place->path("cache"));
        return hostSystemCalls().filesInUse(folder.get()).value();
    }

    std::unique_ptr<ScratchFolder> m_place;
};

void TestFilesInUse::init()
{
    m_place = std::make_unique<ScratchFolder>();
    for (const char *folder : {"cache/prog/deep", "cache/program", "cache/two\nlines", "other"})
        m_place->makeFolder(folder);
    for (const char *file : {"cache/file", "cache/file (deleted)", "cache/prog/file",
                             "cache/prog/deep/file", "cache/two\nlines/file", "other/file"})
        m_place->makeFile(file, 1);
}

void TestFilesInUse::findsWhatIsUsed_data()
{
    QTest::addColumn<Work>("work");
    QTest::addColumn<QByteArray>("path");
    const auto row = [](const char *name, const Work &work, const char *path) {
        QTest::newRow(name) << work << QByteArray(path);
    };
    row("open", hold, "prog/file");
    row("open, far below", hold, "prog/deep/file");
    row("open, under a name as of deleted files", hold, "file (deleted)");
    row("an open folder", holdFolder, "prog/deep");
    row("mapped", map, "prog/file");
    row("worked in", workIn, "prog/deep");
    row("listened at", listenAt, "prog/socket");
    row("open under another name", holdUnderAnotherName, "prog/deep/file");
}

void TestFilesInUse::findsWhatIsUsed()
{
    QFETCH(const Work, work);
    QFETCH(const QByteArray, path);
    QCOMPARE(inUse(), QByteArrayList());
    OtherProcess other([&] { work(m_place->path("cache/" + path)); });
    QCOMPARE(inUse(), QByteArrayList{path});
    other.end();
    QCOMPARE(inUse(), QByteArrayList());
}

/// It may also be a name with these digits in it.
void TestFilesInUse::findsAMappedFileWithALineEndInItsName()
{
    const OtherProcess other([&] { map(m_place->path("cache/two\nlines/file")); });
    QCOMPARE(inUse(), QByteArrayList({"two\nlines/file", "two\\012lines/file"}));
}

void TestFilesInUse::findsARunningProgram()
{
    const QByteArray copy = m_place->path("cache/prog/program");
    QVERIFY(QFile::copy(QStandardPaths::findExecutable(QStringLiteral("sleep")),
                        QFile::decodeName(copy)));
    OtherProcess other([&] {
        std::array<int, 2> ends{};
        must(::pipe2(ends.data(), O_CLOEXEC) == 0, "a pipe");
        if (::fork() == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::execl(copy.constData(), "sleep", "1000", nullptr);
            ::_exit(1);
        }
        ::close(ends[1]);
        char end = 0;
        must(::read(ends[0], &end, 1) == 0, "a program that has begun"); // its copy was closed
    });
    QCOMPARE(inUse(), QByteArrayList{"prog/program"});
}

void TestFilesInUse::findsAProcessThatIsShutInThere()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    const OtherProcess other([&] { beShutInto(m_place->path("cache/prog")); });
    QCOMPARE(inUse(), QByteArrayList{"prog"});
}

void TestFilesInUse::findsNothingThatIsNotUsed_data()
{
    QTest::addColumn<Work>("work");
    QTest::addColumn<QByteArray>("path");
    const auto row = [](const char *name, const Work &work, const char *path) {
        QTest::newRow(name) << work << QByteArray(path);
    };
    row("elsewhere", hold, "other/file");
    row("the folder itself", holdFolder, "cache");
    row("around the folder", workIn, ".");
    row("open, but deleted", holdDeleted, "cache/prog/file");
    row("mapped, but deleted", mapDeleted, "cache/prog/file");
    row("worked in, but deleted", workInDeleted, "cache/program");
}

void TestFilesInUse::findsNothingThatIsNotUsed()
{
    QFETCH(const Work, work);
    QFETCH(const QByteArray, path);
    const OtherProcess other([&] { work(m_place->path(path)); });
    QCOMPARE(inUse(), QByteArrayList());
}

void TestFilesInUse::doesNotCountItself()
{
    const FileDescriptor file(open(m_place->path("cache/prog/file")));
    QCOMPARE(inUse(), QByteArrayList());
}

void TestFilesInUse::findsAFolderThatWasMoved()
{
    const FileDescriptor folder = openedFolder(m_place->path("cache"));
    const OtherProcess other([&] { hold(m_place->path("cache/prog/file")); });
    QVERIFY(::rename(m_place->path("cache").constData(), m_place->path("moved").constData()) == 0);
    QCOMPARE(hostSystemCalls().filesInUse(folder.get()).value(), QByteArrayList{"prog/file"});
}

void TestFilesInUse::namesEachOnce()
{
    const OtherProcess other([&] {
        hold(m_place->path("cache/prog/deep/file"));
        map(m_place->path("cache/prog/deep/file"));
        hold(m_place->path("cache/file"));
    });
    QCOMPARE(inUse(), QByteArrayList({"file", "prog/deep/file"}));
}

void TestFilesInUse::tellsWhenItCannotLook()
{
    QVERIFY(!hostSystemCalls().filesInUse(-1));
}

VANTOR_TEST_MAIN(TestFilesInUse)
#include "tst_FilesInUse.moc"
