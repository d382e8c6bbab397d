#include "platform/instance/HandOver.h"
#include "platform/instance/InstanceLock.h"
#include "platform/instance/InstanceServer.h"
#include "tests/support/run/TestMain.h"

#include <QFile>
#include <QLocalServer>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

using namespace std::chrono_literals;
constexpr auto kShort = 200ms;

} // namespace

/// The first program is this one, too; its lock and its server are made by hand.
class TestHandOver final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isAnswered();
    void waitsForAProgramThatIsStarting();
    void takesTheLockOfAProgramThatEnds_data();
    void takesTheLockOfAProgramThatEnds();
    void isUnanswered_data();
    void isUnanswered();
    void takesNoOtherWordForAnAnswer();

private:
    void start(std::chrono::milliseconds patience = HandOver::kPatience);
    bool endsWith(HandOverResult result);

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_name;
    std::unique_ptr<InstanceLock> m_first;
    std::unique_ptr<InstanceLock> m_second;
    std::unique_ptr<InstanceServer> m_server;
    std::unique_ptr<HandOver> m_handOver;
    QList<HandOverResult> m_results;
};

void TestHandOver::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_name = m_folder->filePath(QStringLiteral("socket"));
    const QStringList files{m_folder->filePath(QStringLiteral("lock"))};
    m_first = std::make_unique<InstanceLock>(files);
    m_second = std::make_unique<InstanceLock>(files);
    m_server = std::make_unique<InstanceServer>(m_name);
    m_results.clear();
    QCOMPARE(m_first->take(), InstanceRole::First);
    QCOMPARE(m_second->take(), InstanceRole::Second);
}

void TestHandOver::cleanup()
{
    m_handOver.reset();
    m_server.reset();
    m_second.reset();
    m_first.reset();
    m_folder.reset();
}

void TestHandOver::start(std::chrono::milliseconds patience)
{
    m_handOver = std::make_unique<HandOver>(*m_second, HandOver::Call{m_name, "token", patience});
    connect(m_handOver.get(), &HandOver::finished, this,
            [this](HandOverResult result) { m_results.append(result); });
    m_handOver->start();
}

bool TestHandOver::endsWith(HandOverResult result)
{
    return QTest::qWaitFor([this] { return !m_results.isEmpty(); }) &&
           m_results == QList<HandOverResult>{result};
}

void TestHandOver::isAnswered()
{
    QSignalSpy calls(m_server.get(), &InstanceServer::called);
    QVERIFY(m_server->listen());
    start();
    QVERIFY(endsWith(HandOverResult::Answered));
    QCOMPARE(calls, (QList<QVariantList>{{QByteArray("token")}}));
    QCOMPARE(m_second->take(), InstanceRole::Second);
}

/// It has the lock already, and does not listen yet.
void TestHandOver::waitsForAProgramThatIsStarting()
{
    start();
    QVERIFY(!QTest::qWaitFor([this] { return !m_results.isEmpty(); }, kShort.count()));
    QVERIFY(m_server->listen());
    QVERIFY(endsWith(HandOverResult::Answered));
}

void TestHandOver::takesTheLockOfAProgramThatEnds_data()
{
    QTest::addColumn<bool>("isConnected");
    QTest::addRow("that listens no more") << false;
    QTest::addRow("that has taken the call") << true;
}

void TestHandOver::takesTheLockOfAProgramThatEnds()
{
    QFETCH(bool, isConnected);
    QLocalServer hung; // takes the call and never answers
    if (isConnected)
        QVERIFY(hung.listen(m_name));
    start();
    if (isConnected)
        QTRY_VERIFY(hung.hasPendingConnections());
    m_first.reset();
    if (isConnected)
        hung.nextPendingConnection()->abort();
    hung.close();
    QVERIFY(endsWith(HandOverResult::Succeeded));
    QCOMPARE(m_second->take(), InstanceRole::First);
}

void TestHandOver::isUnanswered_data()
{
    QTest::addColumn<bool>("isConnected");
    QTest::addColumn<bool>("hasSocket");
    QTest::addRow("nobody listens") << false << true;
    QTest::addRow("nobody answers") << true << true;
    QTest::addRow("there is no place for a socket") << false << false;
}

void TestHandOver::isUnanswered()
{
    QFETCH(bool, isConnected);
    QFETCH(bool, hasSocket);
    QLocalServer hung;
    if (isConnected)
        QVERIFY(hung.listen(m_name));
    if (!hasSocket)
        m_name.clear();
    start(kShort);
    QVERIFY(endsWith(HandOverResult::Unanswered));
    QCOMPARE(m_second->take(), InstanceRole::Second);
}

void TestHandOver::takesNoOtherWordForAnAnswer()
{
    QLocalServer other;
    QVERIFY(other.listen(m_name));
    connect(&other, &QLocalServer::newConnection, this, [&other] {
        QLocalSocket *caller = other.nextPendingConnection();
        caller->write("hello\n");
        caller->flush();
    });
    start(kShort);
    QVERIFY(endsWith(HandOverResult::Unanswered));
}

VANTOR_TEST_MAIN(TestHandOver)
#include "tst_HandOver.moc"
