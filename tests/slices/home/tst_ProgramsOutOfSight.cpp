#include "platform/system/HostSystemCalls.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/MadeMachine.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ProcessView.h"
#include "tests/support/run/TestMain.h"

#include <QSysInfo>
#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>

namespace {

FileUrls locations(const HomeLayout &layout, SliceKind kind)
{
    return *layout.locations(kind);
}

/// The number of a process that has just ended.
QByteArray endedProcess()
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    ::waitpid(child, nullptr, 0);
    return QByteArray::number(child);
}

} // namespace

Q_DECLARE_METATYPE(ProcessView)

/// What counts as running of programs whose processes cannot be seen: they run in a sandbox, or
/// Vantor does.
class TestProgramsOutOfSight final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void asksTheSocketOfAChromiumWhoseNumberIsGone();
    void takesEveryMailProgramForRunning();
    void takesEveryLockForHeld_data();
    void takesEveryLockForHeld();

private:
    ProgramsInUse found(const MadeHome &home) const
    {
        return ProgramsInUse::find(*m_machine, home.access(), home.survey());
    }

    std::unique_ptr<MadeMachine> m_machine;
};

void TestProgramsOutOfSight::init()
{
    m_machine = std::make_unique<MadeMachine>();
    m_machine->processes = {77};
}

/// As of one in a sandbox that has the name of the machine.
void TestProgramsOutOfSight::asksTheSocketOfAChromiumWhoseNumberIsGone()
{
    const MadeHome home({".config/vivaldi/Default/History"});
    const FileUrls files = locations(home.survey(), SliceKind::BrowserData);
    home.link(".config/vivaldi/SingletonLock", "desk-78");
    home.link(".config/vivaldi/SingletonSocket", "/tmp/.vivaldi/socket");
    QCOMPARE(found(home).without(files), files);
    m_machine->servedSockets = {"/tmp/.vivaldi/socket"};
    QCOMPARE(found(home).without(files), FileUrls());
    m_machine->servedSockets.clear();
    m_machine->setHook([asked = 0](int, std::string_view name) mutable {
        return name == "readLink" && ++asked == 2 ? EIO : 0;
    });
    QCOMPARE(found(home).without(files), FileUrls());
}

void TestProgramsOutOfSight::takesEveryMailProgramForRunning()
{
    const MadeHome home({".claws-mail/mimetmp/", ".cache/geary/x", ".cache/other/x"});
    const FileUrls folders = locations(home.survey(), SliceKind::MailDownloads);
    QCOMPARE(found(home).seen(), ProgramsSeen::All);
    m_machine->isSeenWhole = false;
    QCOMPARE(found(home).seen(), ProgramsSeen::Some);
    QCOMPARE(found(home).without(folders), FileUrls());
    QCOMPARE(home.relative(found(home).keptInside(locations(home.survey(), SliceKind::Cache))),
             QByteArrayList{".cache/geary/"});
}

void TestProgramsOutOfSight::takesEveryLockForHeld_data()
{
    QTest::addColumn<ProcessView>("view");
    QTest::newRow("in a container") << ProcessView::InsideOnly;
    QTest::newRow("in a container, with the list from outside") << ProcessView::OldList;
    QTest::newRow("with a list that hides") << ProcessView::HiddenList;
    QTest::newRow("without a list") << ProcessView::NoList;
}

/// A browser outside of a container has a number that means nothing inside, or another process.
void TestProgramsOutOfSight::takesEveryLockForHeld()
{
    QFETCH(const ProcessView, view);
    if (view == ProcessView::HiddenList)
        VANTOR_NEEDS_ADMINISTRATOR();
    const MadeHome home({".config/vivaldi/Default/History", ".mozilla/firefox/a/cookies.sqlite",
                         ".mozilla/firefox/a/.parentlock"});
    home.nameFirefoxProfiles({"a"});
    const HomeLayout layout = home.survey();
    const FileUrls files = locations(layout, SliceKind::BrowserData);
    QCOMPARE(files.size(), 2);
    const auto leftSeen = [&] {
        const auto found = ProgramsInUse::find(hostSystemCalls(), home.access(), layout);
        return int(found.without(files).size());
    };
    QCOMPARE(runInChildSeeing(view, leftSeen).exitCode, 2); // there are no locks
    const QByteArray machine = QSysInfo::machineHostName().toLocal8Bit();
    for (const QByteArray &number : {QByteArray::number(::getpid()), endedProcess()}) {
        home.link(".config/vivaldi/SingletonLock", machine + '-' + number);
        home.link(".mozilla/firefox/a/lock", "127.0.1.1:+" + number);
        QCOMPARE(runInChildSeeing(view, leftSeen).exitCode, 0);
        QVERIFY(::unlink(home.path(".config/vivaldi/SingletonLock").constData()) == 0);
        QVERIFY(::unlink(home.path(".mozilla/firefox/a/lock").constData()) == 0);
    }
}

VANTOR_TEST_MAIN(TestProgramsOutOfSight)
#include "tst_ProgramsOutOfSight.moc"
