#include "platform/confinement/ProcessConfinement.h"
#include "platform/confinement/ReadableFolders.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <QTest>
#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <memory>
#include <optional>
#include <sched.h>
#include <span>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int kDone = 0;
constexpr int kRefused = 1;

/// What the hostile process uses; made before it starts.
struct World
{
    QByteArray folder;
    QByteArray file; ///< everybody may change it
    int input = -1;  ///< the same, open for reading
    int output = -1; ///< open for writing
    sockaddr_in server = {};
    sockaddr_un localServer = {};
    pid_t other = 0; ///< another process
};

/// Something that a process tries. True when it has succeeded.
using Act = bool (*)(const World &);

bool connects(int family, const void *address, socklen_t size)
{
    const int socket = ::socket(family, SOCK_STREAM, 0);
    return socket >= 0 && ::connect(socket, static_cast<const sockaddr *>(address), size) == 0;
}

bool opens(const QByteArray &path, int flags)
{
    return ::open(path.constData(), flags, 0600) >= 0;
}

bool forks(const World &)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    return child > 0;
}

/// So many that the limit is met, whatever else the user runs.
bool startsVeryManyProcesses(const World &)
{
    constexpr int kMany = 200;
    std::array<pid_t, kMany> children{};
    int started = 0;
    for (pid_t &child : children) {
        child = ::fork();
        if (child == 0)
            ::pause();
        if (child < 0)
            break;
        ++started;
    }
    for (const pid_t child : std::span(children).first(std::size_t(started))) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
    return started == kMany;
}

bool executes(const World &)
{
    // Does not return when it succeeds; the program ends with 0 then.
    ::execl("/bin/true", "true", nullptr);
    return false;
}

bool startsAThread(const World &)
{
    bool hasRun = false;
    std::thread([&] { hasRun = true; }).join();
    return hasRun;
}

bool readsAFont(const World &)
{
    return opens("/usr/share/fonts", O_RDONLY | O_DIRECTORY);
}

bool readsItsInput(const World &world)
{
    char byte = 0;
    return ::read(world.input, &byte, 1) == 1;
}

bool writesItsOutput(const World &world)
{
    return ::write(world.output, "x", 1) == 1;
}

struct NamedAct
{
    const char *name;
    Act act;
};

/// What no helper may do, in or out of a sandbox.
constexpr std::array kNeverAllowed{
    NamedAct{"connects to a server",
             [](const World &w) { return connects(AF_INET, &w.server, sizeof w.server); }},
    NamedAct{"makes a raw socket",
             [](const World &) { return ::socket(AF_NETLINK, SOCK_RAW, 0) >= 0; }},
    NamedAct{"makes a world of its own",
             [](const World &) { return ::unshare(CLONE_NEWUSER) == 0; }},
    NamedAct{"traces its child",
             [](const World &) { return ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0; }},
};

/// What a sandbox allows in its own world, and a decoder does not do.
constexpr std::array kNotForDecoders{
    NamedAct{"reads another file", [](const World &w) { return opens(w.file, O_RDONLY); }},
    NamedAct{"writes a file", [](const World &w) { return opens(w.file, O_WRONLY); }},
    NamedAct{"makes a file",
             [](const World &w) { return opens(w.folder + "/new", O_WRONLY | O_CREAT); }},
    NamedAct{"makes a file without a name",
             [](const World &w) { return opens(w.folder, O_RDWR | O_TMPFILE); }},
    NamedAct{"opens its input to write",
             [](const World &w) {
                 return opens("/proc/self/fd/" + QByteArray::number(w.input), O_WRONLY);
             }},
    NamedAct{"removes a file", [](const World &w) { return ::unlink(w.file.constData()) == 0; }},
    NamedAct{"moves a file",
             [](const World &w) {
                 return ::rename(w.file.constData(), (w.folder + "/moved").constData()) == 0;
             }},
    NamedAct{"cuts a file", [](const World &w) { return ::truncate(w.file.constData(), 0) == 0; }},
    NamedAct{"makes a folder",
             [](const World &w) { return ::mkdir((w.folder + "/d").constData(), 0700) == 0; }},
    NamedAct{"gives rights away", [](const World &w) { return ::fchmod(w.input, 0777) == 0; }},
    NamedAct{"looks into a folder",
             [](const World &w) { return opens(w.folder, O_RDONLY | O_DIRECTORY); }},
    NamedAct{"reads about itself",
             [](const World &) { return opens("/proc/self/stat", O_RDONLY); }},
    NamedAct{
        "connects to a local server",
        [](const World &w) { return connects(AF_UNIX, &w.localServer, sizeof w.localServer); }},
    NamedAct{"signals another process",
             [](const World &w) { return ::kill(w.other, SIGCONT) == 0; }},
    NamedAct{"lifts a limit",
             [](const World &) {
                 const rlimit less{1000, 1000};
                 return ::setrlimit(RLIMIT_NOFILE, &less) == 0;
             }},
};

constexpr std::array kNotForPlayers{NamedAct{"forks", forks}, NamedAct{"executes", executes}};

constexpr std::array kAlwaysAllowed{
    NamedAct{"starts a thread", startsAThread}, NamedAct{"reads a font", readsAFont},
    NamedAct{"reads its input", readsItsInput}, NamedAct{"writes its output", writesItsOutput}};

} // namespace

/// A process that was taken over tries all that could harm the user. Each act succeeds in a process
/// that is not confined, so that its failure means something.
class ProcessConfinementTest final : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ScratchFolder> m_folder;
    World m_world;
    int m_server = -1;
    int m_localServer = -1;

    static void listenTo(int &server, int family, void *address, socklen_t size)
    {
        server = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (::bind(server, static_cast<sockaddr *>(address), size) != 0 ||
            ::listen(server, 20) != 0 ||
            ::getsockname(server, static_cast<sockaddr *>(address), &size) != 0)
            qFatal("no server");
    }

    void makeServers()
    {
        m_world.server.sin_family = AF_INET;
        m_world.server.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        listenTo(m_server, AF_INET, &m_world.server, sizeof m_world.server);
        m_world.localServer.sun_family = AF_UNIX;
        qstrncpy(m_world.localServer.sun_path, m_folder->path("socket").constData(),
                 sizeof m_world.localServer.sun_path);
        listenTo(m_localServer, AF_UNIX, &m_world.localServer, sizeof m_world.localServer);
        ::chmod(m_world.localServer.sun_path, 0777);
    }

    int tried(ChildUser user, std::optional<Confinement> confinement, Act act) const
    {
        return runInChild(user,
                          [=, world = m_world]() mutable {
                              world.other = ::getppid();
                              if (confinement && !confineThisProcess(*confinement))
                                  return kExitUnconfined;
                              return act(world) ? kDone : kRefused;
                          })
            .exitCode;
    }

    static void addRows(const NamedAct &act, std::initializer_list<Confinement> allowed)
    {
        struct Case
        {
            const char *name;
            std::optional<Confinement> confinement;
        };
        for (const Case &c :
             {Case{"unconfined", std::nullopt}, Case{"decoder", Confinement::Decoder},
              Case{"player", Confinement::Player}, Case{"guest", Confinement::Guest}}) {
            const bool isAllowed =
                !c.confinement || std::ranges::count(allowed, *c.confinement) > 0;
            for (const ChildUser user : {ChildUser::Same, ChildUser::Nobody})
                QTest::addRow("%s, %s, %s", act.name, c.name,
                              user == ChildUser::Same ? "as we are" : "as an ordinary user")
                    << act.act << c.confinement << user << (isAllowed ? kDone : kRefused);
        }
    }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<ScratchFolder>();
        m_world.folder = m_folder->path();
        m_world.file = m_folder->makeFile("file", 10);
        if (::chmod(m_world.folder.constData(), 0777) != 0 ||
            ::chmod(m_world.file.constData(), 0666) != 0)
            qFatal("cannot give rights");
        if (::geteuid() == 0 && ::chown(m_world.file.constData(), kNobody, kNobody) != 0)
            qFatal("cannot give the file away");
        m_world.input = ::open(m_world.file.constData(), O_RDONLY | O_CLOEXEC);
        m_world.output = ::open(m_world.file.constData(), O_WRONLY | O_CLOEXEC);
        makeServers();
    }

    void cleanup()
    {
        for (const int descriptor : {m_world.input, m_world.output, m_server, m_localServer})
            ::close(descriptor);
    }

    void decidesOnEachAct_data()
    {
        QTest::addColumn<Act>("act");
        QTest::addColumn<std::optional<Confinement>>("confinement");
        QTest::addColumn<ChildUser>("user");
        QTest::addColumn<int>("result");
        for (const NamedAct &act : kNeverAllowed)
            addRows(act, {});
        for (const NamedAct &act : kNotForDecoders)
            addRows(act, {Confinement::Player, Confinement::Guest});
        for (const NamedAct &act : kNotForPlayers)
            addRows(act, {Confinement::Guest});
        for (const NamedAct &act : kAlwaysAllowed)
            addRows(act, {Confinement::Decoder, Confinement::Player, Confinement::Guest});
    }

    void decidesOnEachAct()
    {
        QFETCH(Act, act);
        QFETCH(std::optional<Confinement>, confinement);
        QFETCH(ChildUser, user);
        QTEST(tried(user, confinement, act), "result");
    }

    void limitsTheProcessesOfAGuest()
    {
        // For the administrator the kernel knows no such limit.
        QCOMPARE(tried(ChildUser::Nobody, std::nullopt, startsVeryManyProcesses), kDone);
        QCOMPARE(tried(ChildUser::Nobody, Confinement::Guest, startsVeryManyProcesses), kRefused);
    }

    void confinesThreadsThatRunAlready()
    {
        const QByteArray file = m_world.file;
        const ChildOutcome outcome = runInChild(ChildUser::Same, [file] {
            std::atomic<bool> isConfined = false;
            bool hasMade = true;
            std::thread other([&] {
                isConfined.wait(false);
                hasMade = ::socket(AF_INET, SOCK_STREAM, 0) >= 0;
            });
            if (!confineThisProcess(Confinement::Player))
                return kExitUnconfined;
            isConfined = true;
            isConfined.notify_all();
            other.join();
            return hasMade ? kDone : kRefused;
        });
        QCOMPARE(outcome.exitCode, kRefused);
    }

    void readsNothingOutsideTheFolders()
    {
        m_folder->makeFolder("in");
        m_folder->makeFile("in/file", 1);
        const QByteArray in = m_folder->path("in");
        const World world = m_world;
        const ChildOutcome outcome = runInChild(ChildUser::Same, [=] {
            const std::array<const char *, 2> folders{"/nowhere", in.constData()};
            if (!readOnlyIn(folders))
                return kExitUnconfined;
            const bool isKept = opens(in + "/file", O_RDONLY) && !opens(in + "/file", O_WRONLY) &&
                                !opens(in + "/../file", O_RDONLY) && !opens(world.file, O_WRONLY) &&
                                ::unlink((in + "/file").constData()) != 0 &&
                                ::truncate((in + "/file").constData(), 0) != 0;
            return isKept ? kDone : kRefused;
        });
        QCOMPARE(outcome.exitCode, kDone);
    }
};

VANTOR_TEST_MAIN(ProcessConfinementTest)
#include "tst_ProcessConfinement.moc"
