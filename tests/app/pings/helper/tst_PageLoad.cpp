#include "app/pings/PingSender.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/RecordingServer.h"
#include "tests/support/run/TestMain.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto kLimit = 15s;

QByteArray pageWithScript(const QByteArray &script)
{
    return "<html><body><p>Thank you.</p><script>" + script + "</script></body></html>";
}

} // namespace

/// The program that loads a ping's page, run as Vantor runs it.
class TestPageLoad final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isWhatAPingStarts();
    void runsTheScriptsOfThePage();
    void waitsForWhatTheScriptsAskLater();
    void givesAPageThatNeverSettlesUpInTime();
    void givesAServerThatNeverAnswersUpAtTheLimit();
    void needsNoDisplay();
    void saysWhenNobodyIsThere();
    void refusesWhatIsNoWebAddress_data();
    void refusesWhatIsNoWebAddress();

private:
    /// The exit code; -1 when it crashed or had to be killed.
    int load(const QString &address, std::chrono::milliseconds limit = kLimit)
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        QEventLoop loop; // the server answers from it
        connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
        process.start(QStringLiteral(VANTOR_PING), {address, QString::number(limit.count())});
        loop.exec();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

void TestPageLoad::isWhatAPingStarts()
{
    RecordingServer server;
    server.servePage(QStringLiteral("/page"), pageWithScript("fetch('/counted')"));
    const LogRecorder log;
    PingSender sender(PingHelper{QStringLiteral(VANTOR_PING), kLimit});
    sender.updateStatsForURLString(server.address(QStringLiteral("/page")));
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(QStringLiteral("/counted")), 1,
                              int(std::chrono::milliseconds(kLimit).count()));
    QCOMPARE(server.requestCount(QStringLiteral("/page")), 2);
    QTRY_VERIFY(sender.findChildren<QProcess *>().isEmpty());
    QCOMPARE(log.lines(), QStringList{QStringLiteral("Loading")});
}

void TestPageLoad::runsTheScriptsOfThePage()
{
    RecordingServer server;
    server.servePage(QStringLiteral("/page"),
                     pageWithScript("fetch('/' + document.visibilityState)"));
    QCOMPARE(load(server.address(QStringLiteral("/page"))), 0);
    QCOMPARE(server.requests(), QStringList({QStringLiteral("/page"), QStringLiteral("/visible")}));
}

void TestPageLoad::waitsForWhatTheScriptsAskLater()
{
    RecordingServer server;
    const QByteArray later = "setTimeout(() => { new Image().src = '/second'; }, 300)";
    server.servePage(QStringLiteral("/page"),
                     pageWithScript("fetch('/first').then(() => " + later + ")"));
    QCOMPARE(load(server.address(QStringLiteral("/page"))), 0);
    QCOMPARE(server.requestCount(QStringLiteral("/second")), 1);
}

void TestPageLoad::givesAPageThatNeverSettlesUpInTime()
{
    RecordingServer server;
    server.servePage(QStringLiteral("/page"),
                     pageWithScript("setInterval(() => fetch('/again'), 100)"));
    const QDeadlineTimer deadline(kLimit);
    QCOMPARE(load(server.address(QStringLiteral("/page"))), 0);
    QVERIFY(!deadline.hasExpired());
    QVERIFY(server.requestCount(QStringLiteral("/again")) > 5);
}

void TestPageLoad::givesAServerThatNeverAnswersUpAtTheLimit()
{
    RecordingServer server;
    server.keepWaiting(QStringLiteral("/page"));
    QCOMPARE(load(server.address(QStringLiteral("/page")), 2s), 1);
    QCOMPARE(server.requestCount(QStringLiteral("/page")), 1);
}

void TestPageLoad::needsNoDisplay()
{
    RecordingServer server;
    server.servePage(QStringLiteral("/page"), pageWithScript("fetch('/counted')"));
    const QProcessEnvironment before = m_environment;
    m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    m_environment.remove(QStringLiteral("DISPLAY"));
    m_environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    const int answer = load(server.address(QStringLiteral("/page")));
    m_environment = before;
    QCOMPARE(answer, 0);
    QCOMPARE(server.requestCount(QStringLiteral("/counted")), 1);
}

void TestPageLoad::saysWhenNobodyIsThere()
{
    QString address;
    {
        const RecordingServer server;
        address = server.address(QStringLiteral("/page"));
    }
    QCOMPARE(load(address), 1);
}

void TestPageLoad::refusesWhatIsNoWebAddress_data()
{
    QTest::addColumn<QString>("address");
    for (const char *address : {"", "file:///etc/hostname", "ftp://127.0.0.1/", "javascript:1",
                                "http://", "127.0.0.1/page", "data:text/html,a"})
        QTest::newRow(address) << QString::fromLatin1(address);
}

void TestPageLoad::refusesWhatIsNoWebAddress()
{
    QFETCH(QString, address);
    QCOMPARE(load(address), 2);
}

VANTOR_TEST_MAIN(TestPageLoad)
#include "tst_PageLoad.moc"
