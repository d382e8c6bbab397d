#include "platform/confinement/ConfinedProcess.h"
#include "platform/system/FileDescriptor.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/ProcessEnd.h"
#include "tests/support/run/TestMain.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>
#include <fcntl.h>
#include <thread>

namespace {

using namespace std::chrono_literals;
constexpr std::chrono::milliseconds kLong = 60s;

} // namespace

/// Programs that are not trusted: here they are lines of the shell. $F is the folder of the test.
class ConfinedProcessTest final : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ScratchFolder> m_folder;

    QString path(const QByteArray &name) const { return QFile::decodeName(m_folder->path(name)); }

    QByteArray read(const QByteArray &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    ConfinedProcess shell(const char *line, std::chrono::milliseconds patience = kLong) const
    {
        ConfinedProcess process;
        process.program = QStringLiteral("/bin/sh");
        process.arguments = {QStringLiteral("-c"),
                             QStringLiteral("F='%1'; %2").arg(path(""), QLatin1String(line))};
        process.workingFolder = path("");
        process.patience = patience;
        return process;
    }

    static bool hasRun(const ConfinedProcess &process, const std::stop_token &stop)
    {
        return runConfined(process, stop) == 0;
    }

    /// Of the process whose number a program left in the file.
    bool hasEnded(const QByteArray &numberFile) const
    {
        return ::hasEnded(read(numberFile).trimmed().toInt());
    }

private Q_SLOTS:
    void init() { m_folder = std::make_unique<ScratchFolder>(); }

    void tellsWhetherItEndedWell_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("isWell");
        QTest::newRow("well") << QByteArray("exit 0") << true;
        QTest::newRow("badly") << QByteArray("exit 3") << false;
        QTest::newRow("by a signal") << QByteArray("kill -SEGV $$") << false;
    }

    void tellsWhetherItEndedWell()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, isWell);
        QCOMPARE(hasRun(shell(line.constData()), {}), isWell);
    }

    void tellsTheExitCode()
    {
        QCOMPARE(runConfined(shell("exit 3"), {}), std::optional<int>(3));
        QVERIFY(!runConfined(shell("kill -SEGV $$"), {}).has_value());
    }

    void whatDoesNotExistIsNotRun()
    {
        ConfinedProcess process = shell("");
        process.program = path("no such program");
        QVERIFY(!hasRun(process, {}));
    }

    void readsAndWritesWhatItIsGiven()
    {
        ConfinedProcess process = shell("cat");
        process.outputFile = path("output");
        QVERIFY(hasRun(process, {})); // nothing to read
        QCOMPARE(read("output"), QByteArray());
        QFile input(path("input"));
        QVERIFY(input.open(QIODevice::WriteOnly));
        input.write("words");
        input.close();
        const FileDescriptor file(
            ::open(m_folder->path("input").constData(), O_RDONLY | O_CLOEXEC));
        process.input = file.get();
        QVERIFY(hasRun(process, {}));
        QCOMPARE(read("output"), QByteArray("words"));
    }

    void inheritsNoEnvironment()
    {
        qputenv("VANTOR_TEST_SECRET", "secret");
        qputenv("SSH_AUTH_SOCK", "/run/agent");
        ConfinedProcess process = shell("env");
        process.outputFile = path("output");
        QVERIFY(hasRun(process, {}));
        QVERIFY(read("output").contains("PATH="));
        for (const char *name : {"VANTOR_TEST_SECRET", "SSH_AUTH_SOCK", "HOME=", "DBUS", "XDG_"})
            QVERIFY2(!read("output").contains(name), name);
    }

    void keepsWhatItNeedsOfTheEnvironment()
    {
        qputenv("LANG", "C.UTF-8");
        ConfinedProcess process = shell("env");
        process.outputFile = path("output");
        QVERIFY(hasRun(process, {}));
        QVERIFY(read("output").contains("LANG=C.UTF-8\n"));
    }

    void inheritsNoDescriptors()
    {
        QFile secret(path("secret"));
        QVERIFY(secret.open(QIODevice::ReadWrite));
        // One that is left open for children by mistake, and one far up.
        const FileDescriptor open(::dup(secret.handle()));
        const FileDescriptor farUp(::fcntl(secret.handle(), F_DUPFD, 700));
        ConfinedProcess process = shell("ls -l /proc/self/fd");
        process.outputFile = path("output");
        QVERIFY(hasRun(process, {}));
        QVERIFY(read("output").contains("output"));
        QVERIFY2(!read("output").contains("secret"), read("output").constData());
    }

    void keepsTheDescriptorThatItIsGiven()
    {
        QFile kept(path("kept"));
        QVERIFY(kept.open(QIODevice::ReadWrite));
        ConfinedProcess process = shell("ls -l /proc/self/fd");
        process.outputFile = path("output");
        process.kept = kept.handle();
        QVERIFY(hasRun(process, {}));
        QVERIFY2(read("output").contains(" " + QByteArray::number(kept.handle()) + " -> " +
                                         m_folder->path("kept")),
                 read("output").constData());
    }

    void gainsNoRights()
    {
        ConfinedProcess process = shell("grep NoNewPrivs /proc/self/status");
        process.outputFile = path("output");
        QVERIFY(hasRun(process, {}));
        QCOMPARE(read("output"), QByteArray("NoNewPrivs:\t1\n"));
    }

    void memoryIsLimited()
    {
        // dd keeps one block of this many bytes in memory.
        ConfinedProcess process =
            shell("dd if=/dev/zero of=/dev/null bs=200M count=1 && : >\"$F/done\"");
        QVERIFY(hasRun(process, {}));
        QVERIFY(QFile::remove(path("done")));
        process.limits.memory = 80ULL << 20;
        QVERIFY(!hasRun(process, {}));
        QVERIFY(!QFile::exists(path("done")));
    }

    void processorTimeIsLimited()
    {
        ConfinedProcess process = shell("while :; do :; done");
        process.limits.processorTime = 1s;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!hasRun(process, {}));
        QVERIFY(timer.elapsed() < kLong.count());
    }

    void whatItWritesIsLimited()
    {
        ConfinedProcess process = shell("head -c 20M /dev/zero >\"$F/large\"");
        process.limits.fileSize = 1'000'000;
        QVERIFY(!hasRun(process, {}));
        QCOMPARE(read("large").size(), 1'000'000);
    }

    void whatTakesTooLongIsEndedWithItsChildren()
    {
        QVERIFY(!hasRun(
            shell("echo $$ >\"$F/number\"; sleep 600 & echo $! >\"$F/child\"; wait", 300ms), {}));
        QVERIFY(hasEnded("number"));
        QVERIFY(hasEnded("child"));
    }

    void whatItLeavesBehindEndsToo()
    {
        QVERIFY(hasRun(shell("sleep 600 & echo $! >\"$F/child\""), {}));
        QVERIFY(hasEnded("child"));
    }

    void aStopEndsIt()
    {
        std::stop_source stop;
        const std::jthread other([&] {
            while (read("number").isEmpty())
                std::this_thread::yield();
            stop.request_stop();
        });
        QVERIFY(!hasRun(shell("echo $$ >\"$F/number\"; exec sleep 600"), stop.get_token()));
        QVERIFY(hasEnded("number"));
    }
};

VANTOR_TEST_MAIN(ConfinedProcessTest)
#include "tst_ConfinedProcess.moc"
