#include "app/grant/RealHomeDirectory.h"
#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/files/FolderGrant.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/program/VirtualDisplay.h"
#include "tests/support/disk/MadeTree.h"
#include "tests/support/run/Must.h"
#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <csignal>
#include <sys/stat.h>

namespace {

using namespace std::chrono_literals;

constexpr int kPatience = 30'000; ///< milliseconds, for a slow machine
constexpr auto kStill = 2500ms;   ///< longer than any pause that the pages make by themselves
constexpr auto kBetweenPictures = 100ms;
constexpr int kFolders = 2;             ///< that the user has thrown away
constexpr int kFilesInAFolder = 10'000; ///< enough that the cleaning is met in the midst of them
constexpr unsigned kReadOnly = 0500;
constexpr mode_t kFile = S_IFREG | 0600;

const QByteArray kTrash = ".local/share/Trash/files";

/// What ends the program from outside; 0 for the loss of its display.
constexpr int kDisplayLost = 0;

} // namespace

/// The program as it is installed, ended from outside while it removes files. Each time it has a
/// display of its own, and a home with read-only folders in the trash, which it makes writable
/// while it empties them.
class TestProgramEnd final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void stopsACleaningAndEnds_data();
    void stopsACleaningAndEnds();
    void endsWhileASheetIsOpen();
    void endsWhileItMeasures();

private:
    void makeHome();
    void grantHome();
    void startProgram();
    bool press(const QStringList &keys);
    bool waitUntilStill();
    bool openSlices();
    void end(int way);
    void verifyEnd(int way);
    QByteArray inHome(const QByteArray &relative) const { return m_home + '/' + relative; }
    QString path(const QByteArray &relative) const
    {
        return QFile::decodeName(m_tree->path(inHome(relative)));
    }
    QByteArray folder(int number) const { return kTrash + "/d" + QByteArray::number(number); }
    bool isBeingEmptied(int number) const
    {
        return (QFileInfo(path(folder(number))).permissions() & QFileDevice::WriteOwner) != 0;
    }

    std::unique_ptr<MadeTree> m_tree;
    QByteArray m_home;
    std::unique_ptr<VirtualDisplay> m_display;
    QByteArray m_empty; ///< the picture without the program
    std::unique_ptr<QProcess> m_program;
};

void TestProgramEnd::init()
{
    m_tree = std::make_unique<MadeTree>();
    makeHome();
    grantHome();
    m_display = std::make_unique<VirtualDisplay>();
    m_empty = m_display->picture();
    startProgram();
}

void TestProgramEnd::cleanup()
{
    if (m_program) {
        if (QTest::currentTestFailed())
            qInfo().noquote() << m_program->readAllStandardError();
        m_program->kill();
        m_program->waitForFinished();
    }
    m_program.reset();
    m_display.reset();
    m_tree.reset();
}

/// The folder has the name of the user's own home, because the program takes only such a folder.
void TestProgramEnd::makeHome()
{
    m_home = RealHomeDirectory().split('/').constLast();
    QByteArray made = m_home;
    m_tree->makeFolder(made);
    for (const QByteArray &name : kTrash.split('/'))
        m_tree->makeFolder(made += '/' + name);
    for (int number = 0; number < kFolders; ++number) {
        const QByteArray name = inHome(folder(number));
        m_tree->makeFolder(name);
        const FileDescriptor folder = m_tree->open(name);
        for (int file = 0; file < kFilesInAFolder; ++file)
            must(::mknodat(folder.get(), QByteArray::number(file).constData(), kFile, 0) == 0,
                 "a file");
        m_tree->setMode(name, kReadOnly);
    }
    m_tree->makeFolder(inHome("Downloads"));
    m_tree->makeFile(inHome("Downloads/d"), 1000);
    m_tree->makeFile(inHome("letter"), 1000);
}

/// As if the user had granted the home, and declined the tutorial, in an earlier run.
void TestProgramEnd::grantHome()
{
    const auto grant = makeGrant(hostSystemCalls(), m_tree->path(m_home));
    QVERIFY(grant);
    UserDefaults defaults(QFile::decodeName(m_tree->path("config/vantor")), hostSystemCalls());
    defaults.setData(VNTHomeFolderString, *grant);
    defaults.setBoolean(VNTHideDemoWindowString, true);
    QVERIFY(defaults.synchronize());
}

void TestProgramEnd::startProgram()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), QFile::decodeName(m_tree->path(m_home)));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"),
                       QFile::decodeName(m_tree->path("config")));
    environment.insert(QStringLiteral("DISPLAY"), m_display->name());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    for (const char *variable :
         {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "WAYLAND_DISPLAY"})
        environment.remove(QString::fromLatin1(variable));
    m_program = std::make_unique<QProcess>();
    m_program->setProcessEnvironment(environment);
    m_program->start(qEnvironmentVariable("VANTOR_PROGRAM"), {});
    QVERIFY(m_program->waitForStarted());
}

bool TestProgramEnd::press(const QStringList &keys)
{
    return m_display->press(keys) && waitUntilStill();
}

bool TestProgramEnd::waitUntilStill()
{
    QByteArray last;
    QElapsedTimer still;
    QElapsedTimer picture;
    still.start();
    picture.start();
    const auto isStill = [&] {
        if (m_program->state() != QProcess::Running)
            return true; // it will not move any more
        if (!picture.hasExpired(kBetweenPictures.count()))
            return false;
        picture.start();
        if (const QByteArray next = m_display->picture(); next != last) {
            last = next;
            still.start();
        }
        return still.hasExpired(kStill.count());
    };
    return QTest::qWaitFor(isStill, kPatience) && m_program->state() == QProcess::Running;
}

/// From the start to the page of the slices.
bool TestProgramEnd::openSlices()
{
    return QTest::qWaitFor([this] { return m_display->picture() != m_empty; }, kPatience) &&
           waitUntilStill() && press({QStringLiteral("Return")});
}

void TestProgramEnd::end(int way)
{
    if (way == kDisplayLost)
        m_display->kill();
    else
        ::kill(static_cast<pid_t>(m_program->processId()), way);
}

void TestProgramEnd::verifyEnd(int way)
{
    QVERIFY(m_program->waitForFinished(kPatience));
    const QByteArray said = m_program->readAllStandardError();
    QVERIFY2(!said.contains("pure virtual") && !said.contains("terminate called"), said);
    if (way == kDisplayLost) {
        QCOMPARE(m_program->exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_program->exitCode(), EXIT_FAILURE);
    } else {
        QCOMPARE(m_program->exitStatus(), QProcess::CrashExit); // by a signal
        QCOMPARE(m_program->exitCode(), way);
    }
    const UserDefaults defaults(QFile::decodeName(m_tree->path("config/vantor")),
                                hostSystemCalls());
    QVERIFY(defaults.exclusionsAreKnown());
    QVERIFY(defaults.isStored(VNTHomeFolderString));
}

void TestProgramEnd::stopsACleaningAndEnds_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("the display is lost") << kDisplayLost;
    QTest::newRow("told to end") << SIGTERM;
}

void TestProgramEnd::stopsACleaningAndEnds()
{
    QFETCH(int, way);
    QVERIFY(openSlices());
    QVERIFY(press({QStringLiteral("Return")})); // asks for the consent
    QVERIFY(!isBeingEmptied(0));
    QVERIFY(m_display->press({QStringLiteral("Tab"), QStringLiteral("space")})); // gives it
    const auto isAnyBeingEmptied = [this] {
        for (int number = 0; number < kFolders; ++number) {
            if (isBeingEmptied(number))
                return true;
        }
        return false;
    };
    QVERIFY(QTest::qWaitFor(isAnyBeingEmptied, kPatience));
    end(way);
    verifyEnd(way);

    int left = 0;
    for (int number = 0; number < kFolders; ++number) {
        if (!QFileInfo::exists(path(folder(number))))
            continue;
        ++left;
        QVERIFY2(!isBeingEmptied(number), "a folder did not get its own rights back");
    }
    QVERIFY2(left > 0, "the cleaning went on to its end");
    QVERIFY(QFileInfo::exists(path("Downloads/d"))); // was not chosen
    QVERIFY(QFileInfo::exists(path("letter")));
}

/// A window with a sheet does not let itself be closed.
void TestProgramEnd::endsWhileASheetIsOpen()
{
    QVERIFY(openSlices());
    QVERIFY(press({QStringLiteral("Return")}));
    end(SIGTERM);
    verifyEnd(SIGTERM);
    QCOMPARE(QDir(path(folder(0))).entryList(QDir::Files).size(), kFilesInAFolder);
}

void TestProgramEnd::endsWhileItMeasures()
{
    QVERIFY(QTest::qWaitFor([this] { return m_display->picture() != m_empty; }, kPatience));
    QVERIFY(waitUntilStill());
    QVERIFY(m_display->press({QStringLiteral("Return")}));
    end(kDisplayLost);
    verifyEnd(kDisplayLost);
    QCOMPARE(QDir(path(folder(0))).entryList(QDir::Files).size(), kFilesInAFolder);
}

VANTOR_TEST_MAIN(TestProgramEnd)
#include "tst_ProgramEnd.moc"
