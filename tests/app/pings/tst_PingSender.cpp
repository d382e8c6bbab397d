#include "app/pings/PingSender.h"
#include "platform/system/FileDescriptor.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/Must.h"
#include "tests/support/run/RecordingServer.h"
#include "tests/support/run/TestMain.h"

#include <QDeadlineTimer>
#include <QNetworkReply>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <cerrno>
#include <csignal>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

const QString kPage = QStringLiteral("/page");
const QString kLoading = QStringLiteral("Loading");

/// A stand-in for the helper: a shell script, which gets the helper's arguments.
class HelperScript final
{
public:
    explicit HelperScript(const QByteArray &commands)
    {
        QFile script(m_folder.filePath(QStringLiteral("helper")));
        const bool isWritten = script.open(QIODevice::WriteOnly) &&
                               script.write("#!/bin/sh\ncd \"${0%/*}\"\n" + commands) > 0 &&
                               script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        must(isWritten, "writing a file");
    }

    PingHelper helper(std::chrono::milliseconds limit = 10s) const
    {
        return {m_folder.filePath(QStringLiteral("helper")), limit};
    }

    /// What it wrote into the file "said".
    QByteArray said() const
    {
        QFile file(m_folder.filePath(QStringLiteral("said")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_folder;
};

const QByteArray kSaysItsArguments = "echo \"$@\" >> said\n";
const QByteArray kHangs = "echo $$ > said.new && mv said.new said && exec sleep 1000\n";

bool isIdle(const PingSender &sender)
{
    return sender.findChildren<QNetworkReply *>().isEmpty() &&
           sender.findChildren<QProcess *>().isEmpty();
}

QByteArray answerWith(const QByteArray &status, const QByteArray &body)
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

} // namespace

class TestPingSender final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loadsAPageThatIsThereOnceMore();
    void loadsAnErrorPageLikeAnyOther_data();
    void loadsAnErrorPageLikeAnyOther();
    void doesNothingWithAnEmptyAnswer_data();
    void doesNothingWithAnEmptyAnswer();
    void logsATransportError_data();
    void logsATransportError();
    void logsThatNobodyIsThere();
    void logsAnAddressThatIsNone();
    void readsNoMoreThanIsNeeded();
    void followsRedirects();
    void givesNoCookiesBack();
    void sendsSeveralPingsAtOnce();

    void givesTheHelperNothingOfOurs();
    void tellsTheHelperTheWayToTheNetwork();
    void onlyLogsAHelperThatIsMissing();
    void onlyLogsAHelperThatFails_data();
    void onlyLogsAHelperThatFails();
    void endsAHelperThatHangs();
    void waitsForNothingWhenItIsDestroyed();
    void dropsAnUnansweredPingWhenItIsDestroyed();
    void looksForTheHelperBesideTheProgram();

private:
    RecordingServer m_server;
};

void TestPingSender::loadsAPageThatIsThereOnceMore()
{
    m_server.servePage(kPage, "<p>Thank you.</p>");
    const HelperScript script(kSaysItsArguments);
    const LogRecorder log;
    PingSender sender(script.helper(7s));
    sender.updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(isIdle(sender));
    QCOMPARE(log.lines(), QStringList{kLoading});
    QCOMPARE(script.said(), m_server.address(kPage).toLatin1() + " 7000\n");
}

void TestPingSender::loadsAnErrorPageLikeAnyOther_data()
{
    QTest::addColumn<QByteArray>("status");
    for (const char *status :
         {"400 Bad Request", "401 Unauthorized", "403 Forbidden", "404 Not Found", "410 Gone",
          "418 I'm a teapot", "500 Internal Server Error", "503 Service Unavailable", "599 Other"})
        QTest::newRow(status) << QByteArray(status);
}

void TestPingSender::loadsAnErrorPageLikeAnyOther()
{
    QFETCH(QByteArray, status);
    m_server.serveRaw(kPage, answerWith(status, "<p>Something is wrong.</p>"));
    const HelperScript script(kSaysItsArguments);
    const LogRecorder log;
    PingSender sender(script.helper());
    sender.updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(isIdle(sender));
    QCOMPARE(log.lines(), QStringList{kLoading});
}

void TestPingSender::doesNothingWithAnEmptyAnswer_data()
{
    QTest::addColumn<QByteArray>("status");
    for (const char *status : {"200 OK", "204 No Content", "404 Not Found", "500 Oh"})
        QTest::newRow(status) << QByteArray(status);
}

void TestPingSender::doesNothingWithAnEmptyAnswer()
{
    QFETCH(QByteArray, status);
    m_server.serveRaw(kPage, answerWith(status, {}));
    const HelperScript script(kSaysItsArguments);
    const LogRecorder log;
    PingSender sender(script.helper());
    QSignalSpy requested(&m_server, &RecordingServer::requested);
    sender.updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(isIdle(sender));
    QCOMPARE(requested.size(), 1);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(script.said(), QByteArray());
}

void TestPingSender::logsATransportError_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("closed without an answer") << QByteArray();
    QTest::newRow("no HTTP") << QByteArray("hello\r\n\r\n");
    QTest::newRow("cut short") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n<p>");
    QTest::newRow("error page cut short")
        << QByteArray("HTTP/1.1 404 Not Found\r\nContent-Length: 50\r\n\r\n<p>");
    QTest::newRow("leads to itself")
        << QByteArray("HTTP/1.1 302 Found\r\nLocation: /page\r\nContent-Length: 0\r\n"
                      "Connection: close\r\n\r\n");
}

void TestPingSender::logsATransportError()
{
    QFETCH(QByteArray, answer);
    m_server.serveRaw(kPage, answer);
    const HelperScript script(kSaysItsArguments);
    const LogRecorder log;
    PingSender sender(script.helper());
    sender.updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(isIdle(sender));
    QCOMPARE(log.lines().size(), 1);
    QVERIFY(log.lines().first().startsWith(QStringLiteral("Error: ")));
    QVERIFY(log.lines().first().size() > QStringLiteral("Error: ").size());
    QCOMPARE(script.said(), QByteArray());
}

void TestPingSender::logsThatNobodyIsThere()
{
    QString address;
    {
        const RecordingServer closed;
        address = closed.address(kPage);
    }
    const LogRecorder log;
    PingSender sender(PingHelper{});
    sender.updateStatsForURLString(address);
    QCOMPARE(log.lines(), QStringList()); // it returned before anything was tried
    QTRY_VERIFY(isIdle(sender));
    QCOMPARE(log.lines(), QStringList{QStringLiteral("Error: Connection refused")});
}

void TestPingSender::logsAnAddressThatIsNone()
{
    const LogRecorder log;
    PingSender sender(PingHelper{});
    sender.updateStatsForURLString(QString());
    sender.updateStatsForURLString(QStringLiteral("no address"));
    QTRY_VERIFY(isIdle(sender));
    QCOMPARE(log.lines().filter(QStringLiteral("Error: ")).size(), 2);
}

/// The server sends without an end; a page that is there at all is there after a part of it.
void TestPingSender::readsNoMoreThanIsNeeded()
{
    RecordingServer server;
    server.serveWithoutEnd(kPage);
    const HelperScript script(kSaysItsArguments);
    const LogRecorder log;
    PingSender sender(script.helper());
    sender.updateStatsForURLString(server.address(kPage));
    QTRY_VERIFY(!log.lines().isEmpty() && isIdle(sender));
    QCOMPARE(log.lines(), QStringList{kLoading});
    constexpr qint64 kMostInBuffers = qint64{16} * 1024 * 1024; // of both ends' systems
    QVERIFY2(server.bytesSent() < kMostInBuffers, QByteArray::number(server.bytesSent()));
}

void TestPingSender::followsRedirects()
{
    m_server.serveRaw(QStringLiteral("/old"),
                      "HTTP/1.1 301 Moved\r\nLocation: /page\r\nContent-Length: 0\r\n"
                      "Connection: close\r\n\r\n");
    m_server.servePage(kPage, "<p>Thank you.</p>");
    const HelperScript script(kSaysItsArguments);
    const LogRecorder log;
    PingSender sender(script.helper());
    sender.updateStatsForURLString(m_server.address(QStringLiteral("/old")));
    QTRY_VERIFY(isIdle(sender));
    QCOMPARE(log.lines(), QStringList{kLoading});
    // The same request once more: the helper follows the redirect by itself.
    QVERIFY(script.said().startsWith(m_server.address(QStringLiteral("/old")).toLatin1()));
}

void TestPingSender::givesNoCookiesBack()
{
    RecordingServer server;
    server.serveRaw(kPage, "HTTP/1.1 200 OK\r\nSet-Cookie: visitor=1; Path=/\r\nContent-Length: 0"
                           "\r\nConnection: close\r\n\r\n");
    PingSender sender(PingHelper{});
    for (int i = 0; i < 2; ++i) {
        sender.updateStatsForURLString(server.address(kPage));
        QTRY_VERIFY(isIdle(sender));
    }
    QCOMPARE(server.heads().size(), 2);
    QVERIFY(!server.heads().last().contains("visitor"));
}

void TestPingSender::sendsSeveralPingsAtOnce()
{
    RecordingServer server;
    server.servePage(kPage, "<p>Thank you.</p>");
    const HelperScript script(kSaysItsArguments);
    const LogRecorder log;
    PingSender sender(script.helper());
    constexpr int kPings = 5;
    for (int i = 0; i < kPings; ++i)
        sender.updateStatsForURLString(server.address(kPage));
    QTRY_VERIFY(isIdle(sender));
    QCOMPARE(server.requestCount(kPage), kPings);
    QCOMPARE(log.lines(), QStringList(kPings, kLoading));
    QCOMPARE(script.said().count('\n'), kPings);
}

void TestPingSender::givesTheHelperNothingOfOurs()
{
    m_server.servePage(kPage, "<p>Thank you.</p>");
    qputenv("VANTOR_TEST_SECRET", "secret");
    qputenv("SSH_AUTH_SOCK", "/run/agent");
    QTemporaryFile open; // left open for children by mistake
    QVERIFY(open.open());
    const FileDescriptor inherited(::dup(open.handle()));
    const HelperScript script(
        "{ env; ls -l /proc/self/fd; grep NoNewPrivs /proc/self/status; ulimit "
        "-c; } > said\n");
    PingSender sender(script.helper());
    sender.updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(!script.said().isEmpty() && isIdle(sender));
    const QByteArray said = script.said();
    QVERIFY2(said.contains("HOME=/nonexistent\n"), said.constData());
    QVERIFY2(said.contains("NoNewPrivs:\t1\n0\n"), said.constData());
    for (const QByteArray &ours :
         {QByteArray("VANTOR_TEST"), QByteArray("SSH_AUTH_SOCK"), QByteArray("DBUS_SESSION"),
          QByteArray("XDG_"), open.fileName().toLocal8Bit()})
        QVERIFY2(!said.contains(ours), (ours + " in\n" + said).constData());
}

void TestPingSender::tellsTheHelperTheWayToTheNetwork()
{
    m_server.servePage(kPage, "<p>Thank you.</p>");
    const HelperScript script("env > said\n");
    qputenv("no_proxy", "127.0.0.1");
    PingSender sender(script.helper());
    sender.updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(!script.said().isEmpty() && isIdle(sender));
    QVERIFY2(script.said().contains("no_proxy=127.0.0.1\n"), script.said().constData());
}

void TestPingSender::onlyLogsAHelperThatIsMissing()
{
    m_server.servePage(kPage, "<p>Thank you.</p>");
    const LogRecorder log;
    PingSender sender(PingHelper{QStringLiteral("/nowhere/vantor-ping")});
    sender.updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(isIdle(sender));
    QTRY_COMPARE(log.lines().size(), 2);
    QVERIFY(log.lines().contains(kLoading));
    QCOMPARE(log.lines().filter(QStringLiteral("no program to load it")).size(), 1);
}

void TestPingSender::onlyLogsAHelperThatFails_data()
{
    QTest::addColumn<QByteArray>("commands");
    QTest::addColumn<QString>("line");
    QTest::newRow("crashes") << QByteArray("kill -SEGV $$\n") << QStringLiteral("was given up");
    QTest::newRow("loads nothing") << QByteArray("exit 1\n") << QStringLiteral("was not loaded");
    QTest::newRow("talks much") << QByteArray("i=0; while [ $i -lt 20000 ]; do i=$((i+1)); echo "
                                              "0123456789; done; exit 1\n")
                                << QStringLiteral("was not loaded");
}

void TestPingSender::onlyLogsAHelperThatFails()
{
    QFETCH(QByteArray, commands);
    QFETCH(QString, line);
    m_server.servePage(kPage, "<p>Thank you.</p>");
    const HelperScript script(commands);
    const LogRecorder log;
    PingSender sender(script.helper());
    sender.updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(isIdle(sender));
    QCOMPARE(log.lines().size(), 2);
    QCOMPARE(log.lines().first(), kLoading);
    QVERIFY(log.lines().last().contains(line));
}

void TestPingSender::endsAHelperThatHangs()
{
    m_server.servePage(kPage, "<p>Thank you.</p>");
    const HelperScript script(kHangs);
    const LogRecorder log;
    PingSender sender(script.helper(3s)); // time enough for it to say so on any machine
    sender.updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(isIdle(sender));
    QVERIFY(!script.said().isEmpty());
    QVERIFY(log.lines().last().contains(QStringLiteral("was given up")));
}

void TestPingSender::waitsForNothingWhenItIsDestroyed()
{
    m_server.servePage(kPage, "<p>Thank you.</p>");
    const HelperScript script(kHangs);
    const LogRecorder log;
    auto sender = std::make_unique<PingSender>(script.helper());
    sender->updateStatsForURLString(m_server.address(kPage));
    QTRY_VERIFY(!script.said().isEmpty());
    const QDeadlineTimer deadline(2s);
    sender.reset();
    QVERIFY(!deadline.hasExpired());
    QVERIFY(::kill(script.said().trimmed().toInt(), 0) != 0);
    QCOMPARE(errno, ESRCH);
    QCOMPARE(log.lines(), QStringList{kLoading});
}

void TestPingSender::dropsAnUnansweredPingWhenItIsDestroyed()
{
    RecordingServer server;
    server.keepWaiting(kPage);
    const LogRecorder log;
    auto sender = std::make_unique<PingSender>(PingHelper{});
    sender->updateStatsForURLString(server.address(kPage));
    QTRY_COMPARE(server.requestCount(kPage), 1);
    sender.reset();
    QCOMPARE(log.lines(), QStringList());
}

void TestPingSender::looksForTheHelperBesideTheProgram()
{
    const PingHelper helper = PingHelper::besideTheProgram();
    QCOMPARE(helper.program,
             QCoreApplication::applicationDirPath() + QStringLiteral("/vantor-ping"));
    QCOMPARE(helper.limit, 15s);
}

VANTOR_TEST_MAIN(TestPingSender)
#include "tst_PingSender.moc"
