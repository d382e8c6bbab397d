#include "platform/instance/InstanceLock.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A process that holds the lock until it is killed.
class Holder final
{
public:
    explicit Holder(const QStringList &files)
    {
        int ready[2] = {-1, -1};
        if (::pipe2(ready, O_CLOEXEC) != 0)
            qFatal("no pipe");
        m_process = ::fork();
        if (m_process == 0) {
            InstanceLock lock(files);
            const char role = lock.take() == InstanceRole::First ? 'y' : 'n';
            (void)!::write(ready[1], &role, 1);
            for (;;)
                ::pause();
        }
        ::close(ready[1]);
        char role = 'n';
        m_holds = ::read(ready[0], &role, 1) == 1 && role == 'y';
        ::close(ready[0]);
    }
    ~Holder() { kill(); }
    Holder(const Holder &) = delete;
    Holder &operator=(const Holder &) = delete;

    bool holds() const { return m_holds; }
    void kill()
    {
        if (m_process <= 0)
            return;
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        m_process = 0;
    }

private:
    pid_t m_process = 0;
    bool m_holds = false;
};

} // namespace

/// Two locks of one process exclude each other as those of two processes do.
class TestInstanceLock final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void isTakenOnce();
    void isFreeWhenItsHolderEnds();
    void isFreeWhenItsProcessIsKilled();
    void isNotInheritedByProgramsThatAreStarted();
    void oneLockedFileIsEnoughToNoticeAnother_data();
    void oneLockedFileIsEnoughToNoticeAnother();
    void keepsNothingWhenItIsSecond();
    void isUnknownWhereNothingCanBeLocked();
    void needsOnlyOneOfTheFolders();
    void changesNoFileThatIsThere();
    void followsNoLink();

private:
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }
    QStringList files() const { return {path("one"), path("two")}; }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestInstanceLock::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void TestInstanceLock::isTakenOnce()
{
    InstanceLock first(files());
    InstanceLock second(files());
    QCOMPARE(first.take(), InstanceRole::First);
    QCOMPARE(first.take(), InstanceRole::First); // has it
    QCOMPARE(second.take(), InstanceRole::Second);
    InstanceLock elsewhere({path("three")});
    QCOMPARE(elsewhere.take(), InstanceRole::First);
}

void TestInstanceLock::isFreeWhenItsHolderEnds()
{
    InstanceLock second(files());
    {
        InstanceLock first(files());
        QCOMPARE(first.take(), InstanceRole::First);
        QCOMPARE(second.take(), InstanceRole::Second);
    }
    QCOMPARE(second.take(), InstanceRole::First);
}

void TestInstanceLock::isFreeWhenItsProcessIsKilled()
{
    Holder holder(files());
    QVERIFY(holder.holds());
    InstanceLock lock(files());
    QCOMPARE(lock.take(), InstanceRole::Second);
    holder.kill();
    QCOMPARE(lock.take(), InstanceRole::First);
}

/// Such a program may outlive this one.
void TestInstanceLock::isNotInheritedByProgramsThatAreStarted()
{
    QProcess other;
    {
        InstanceLock first(files());
        QCOMPARE(first.take(), InstanceRole::First);
        other.start(QStringLiteral("cat"), {});
        QVERIFY(other.waitForStarted());
    }
    InstanceLock second(files());
    QCOMPARE(second.take(), InstanceRole::First);
    other.closeWriteChannel();
    QVERIFY(other.waitForFinished());
}

void TestInstanceLock::oneLockedFileIsEnoughToNoticeAnother_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("the first") << QStringLiteral("one");
    QTest::addRow("the second") << QStringLiteral("two");
}

void TestInstanceLock::oneLockedFileIsEnoughToNoticeAnother()
{
    QFETCH(QString, name);
    InstanceLock other({m_folder->filePath(name)});
    QCOMPARE(other.take(), InstanceRole::First);
    InstanceLock lock(files());
    QCOMPARE(lock.take(), InstanceRole::Second);
}

void TestInstanceLock::keepsNothingWhenItIsSecond()
{
    InstanceLock other({path("two")});
    QCOMPARE(other.take(), InstanceRole::First);
    InstanceLock second(files());
    QCOMPARE(second.take(), InstanceRole::Second);
    InstanceLock third({path("one")});
    QCOMPARE(third.take(), InstanceRole::First);
}

void TestInstanceLock::isUnknownWhereNothingCanBeLocked()
{
    InstanceLock nowhere({path("missing/one"), path("missing/two")});
    QCOMPARE(nowhere.take(), InstanceRole::Unknown);
    InstanceLock nothing({});
    QCOMPARE(nothing.take(), InstanceRole::Unknown);
    const QString file = path("closed/one");
    QVERIFY(QDir().mkdir(path("closed")));
    QVERIFY(QFile::setPermissions(path("closed"), QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::ExeOther | QFile::ExeOwner |
                                                        QFile::ReadOwner | QFile::WriteOwner));
    const ChildOutcome child = runInChild(ChildUser::Nobody, [file] {
        return InstanceLock({file}).take() == InstanceRole::Unknown ? 0 : 1;
    });
    QCOMPARE(child.exitCode, 0);
}

void TestInstanceLock::needsOnlyOneOfTheFolders()
{
    InstanceLock first({path("missing/one"), path("two")});
    InstanceLock second({path("missing/one"), path("two")});
    QCOMPARE(first.take(), InstanceRole::First);
    QCOMPARE(second.take(), InstanceRole::Second);
}

void TestInstanceLock::changesNoFileThatIsThere()
{
    QFile file(path("one"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("content") == 7);
    file.close();
    const QDateTime before = QFileInfo(file).lastModified();
    InstanceLock first({path("one")});
    InstanceLock second({path("one")});
    QCOMPARE(first.take(), InstanceRole::First);
    QCOMPARE(second.take(), InstanceRole::Second);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), "content");
    QCOMPARE(QFileInfo(file).lastModified(), before);
}

void TestInstanceLock::followsNoLink()
{
    QVERIFY(QFile::link(path("target"), path("one")));
    InstanceLock lock({path("one")});
    QCOMPARE(lock.take(), InstanceRole::Unknown);
    QVERIFY(!QFile::exists(path("target")));
}

VANTOR_TEST_MAIN(TestInstanceLock)
#include "tst_InstanceLock.moc"
