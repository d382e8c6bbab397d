#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/OtherProcess.h"
#include "tests/support/run/ProcessView.h"
#include "tests/support/run/TestMain.h"

#include <QFile>
#include <QStandardPaths>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A program in a file of this path: a copy of one that waits for its input to end.
class OtherProgram final
{
public:
    explicit OtherProgram(const QByteArray &path)
    {
        const QString cat = QStandardPaths::findExecutable(QStringLiteral("cat"));
        must(QFile::copy(cat, QFile::decodeName(path)), "a program");
        must(::pipe2(m_input.data(), O_CLOEXEC) == 0, "a pipe");
        posix_spawn_file_actions_t actions;
        must(::posix_spawn_file_actions_init(&actions) == 0, "what to do with its input");
        must(::posix_spawn_file_actions_adddup2(&actions, m_input[0], STDIN_FILENO) == 0, "input");
        // Where one file holds many programs, it tells by this name which one to be.
        std::array<char, 4> name{"cat"};
        std::array<char *, 2> words{name.data(), nullptr};
        must(::posix_spawn(&m_process, path.constData(), &actions, nullptr, words.data(),
                           environ) == 0,
             "a process");
        ::posix_spawn_file_actions_destroy(&actions);
    }
    ~OtherProgram() { end(); }
    OtherProgram(const OtherProgram &) = delete;
    OtherProgram &operator=(const OtherProgram &) = delete;

    void end()
    {
        if (m_process > 0) {
            ::close(m_input[0]);
            ::close(m_input[1]);
            ::waitpid(m_process, nullptr, 0);
        }
        m_process = 0;
    }

private:
    std::array<int, 2> m_input{};
    pid_t m_process = 0;
};

void takeName(const QByteArray &name)
{
    ::prctl(PR_SET_NAME, name.constData());
}

void takeLock(const QByteArray &path)
{
    const int file = ::open(path.constData(), O_RDWR | O_CLOEXEC);
    struct flock lock
    {
    };
    lock.l_type = F_WRLCK;
    must(::fcntl(file, F_SETLK, &lock) == 0, "a lock");
}

} // namespace

Q_DECLARE_METATYPE(ProcessView)

/// Other processes, and the locks that they hold.
class TestProcessList final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsWhichNumbersRun();
    void knowsWhichProgramsRun();
    void knowsAProgramByItsFileToo();
    void seesTheLocksOfOthers();
    void readsALink();
    void knowsWhetherItSeesAll();
    void knowsThatItSeesOnlySome_data();
    void knowsThatItSeesOnlySome();
};

void TestProcessList::knowsWhichNumbersRun()
{
    OtherProcess other([] { takeName("other"); });
    const pid_t number = other.number();
    QVERIFY(hostSystemCalls().isRunning(::getpid()));
    QVERIFY(hostSystemCalls().isRunning(number));
    other.end();
    QVERIFY(!hostSystemCalls().isRunning(number));
    for (const std::int64_t none : {std::int64_t(0), std::int64_t(-1), std::int64_t(1) << 40})
        QVERIFY(!hostSystemCalls().isRunning(none));
}

void TestProcessList::knowsWhichProgramsRun()
{
    // No other run of this test on the machine has a program of the name.
    const QByteArray name = "mailer" + QByteArray::number(::getpid());
    const auto isRunning = [](const QByteArray &program) {
        return hostSystemCalls().programNames()->contains(program);
    };
    QVERIFY(!isRunning(name));
    OtherProcess other([&] { takeName(name); });
    QVERIFY(isRunning(name));
    QVERIFY(!isRunning(name.chopped(1)));
    other.end();
    QVERIFY(!isRunning(name));
}

/// A program may give itself any name, and the process list cuts the name.
void TestProcessList::knowsAProgramByItsFileToo()
{
    const ScratchFolder place;
    const QByteArray name = "mailer (of this test) " + QByteArray::number(::getpid());
    const auto isRunning = [](const QByteArray &program) {
        return hostSystemCalls().programNames()->contains(program);
    };
    QVERIFY(!isRunning(name));
    OtherProgram other(place.path(name));
    QVERIFY(isRunning(name));
    QVERIFY(isRunning(name.first(15)));
    QVERIFY(QFile::remove(QFile::decodeName(place.path(name)))); // as an update does
    QVERIFY(isRunning(name));
    other.end();
    QVERIFY(!isRunning(name));
}

void TestProcessList::seesTheLocksOfOthers()
{
    const ScratchFolder place;
    const QByteArray path = place.makeFile("lock");
    const auto folder = hostSystemCalls().openRoot(place.path().constData());
    const auto file = hostSystemCalls().openFile(folder->get(), "lock");
    QVERIFY(!*hostSystemCalls().isLocked(file->get()));
    OtherProcess other([&] { takeLock(path); });
    QVERIFY(*hostSystemCalls().isLocked(file->get()));
    other.end();
    QVERIFY(!*hostSystemCalls().isLocked(file->get()));
}

void TestProcessList::readsALink()
{
    const ScratchFolder place;
    place.makeLink("lock", "host-\xff-12");
    place.makeFile("file");
    const auto folder = hostSystemCalls().openRoot(place.path().constData());
    QCOMPARE(*hostSystemCalls().readLink(folder->get(), "lock"), QByteArray("host-\xff-12"));
    QCOMPARE(hostSystemCalls().readLink(folder->get(), "file").error(), EINVAL);
    QCOMPARE(hostSystemCalls().readLink(folder->get(), "none").error(), ENOENT);
}

/// The tests may run in a container.
void TestProcessList::knowsWhetherItSeesAll()
{
    std::error_code error;
    const auto space = std::filesystem::read_symlink("/proc/self/ns/pid", error);
    const bool isOutermost = space == "pid:[4026531836]"; // the number that the kernel reserves
    const bool hidesNothing = QFile::exists(QStringLiteral("/proc/1/comm"));
    QCOMPARE(hostSystemCalls().seesAllProcesses(), isOutermost && hidesNothing);
}

void TestProcessList::knowsThatItSeesOnlySome_data()
{
    QTest::addColumn<ProcessView>("view");
    QTest::newRow("in a container") << ProcessView::InsideOnly;
    QTest::newRow("in a container, with the list from outside") << ProcessView::OldList;
    QTest::newRow("with a list that hides") << ProcessView::HiddenList;
    QTest::newRow("without a list") << ProcessView::NoList;
}

void TestProcessList::knowsThatItSeesOnlySome()
{
    QFETCH(const ProcessView, view);
    if (view == ProcessView::HiddenList)
        VANTOR_NEEDS_ADMINISTRATOR();
    const auto seesAll = [] { return int(hostSystemCalls().seesAllProcesses()); };
    QCOMPARE(runInChildSeeing(view, seesAll).exitCode, 0);
}

VANTOR_TEST_MAIN(TestProcessList)
#include "tst_ProcessList.moc"
