#include "platform/instance/InstanceCall.h"
#include "platform/instance/InstanceServer.h"
#include "tests/support/run/TestMain.h"

#include <QFileInfo>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>

class TestInstanceServer final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void answersACall_data();
    void answersACall();
    void answersSeveralCallers();
    void answersACallThatComesInPieces();
    void leavesWhoeverSpeaksAnotherLanguage();
    void isReachedByItsOwnUserAlone();
    void takesThePlaceOfOneThatWasKilled();
    void answersNothingOnceItIsClosed();
    void hearsNothingWithoutAPlace();

private:
    bool call(QLocalSocket &socket, const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<InstanceServer> m_server;
    QString m_name;
    QList<QByteArray> m_called;
};

void TestInstanceServer::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_name = m_folder->filePath(QStringLiteral("socket"));
    m_server = std::make_unique<InstanceServer>(m_name);
    m_called.clear();
    connect(m_server.get(), &InstanceServer::called, this,
            [this](const QByteArray &activation) { m_called.append(activation); });
    QVERIFY(m_server->listen());
}

void TestInstanceServer::cleanup()
{
    m_server.reset();
    m_folder.reset();
}

bool TestInstanceServer::call(QLocalSocket &socket, const QByteArray &bytes) const
{
    socket.connectToServer(m_name);
    return socket.waitForConnected() && socket.write(bytes) == bytes.size() && socket.flush();
}

void TestInstanceServer::answersACall_data()
{
    QTest::addColumn<QByteArray>("activation");
    QTest::addRow("with a permission") << QByteArray("token-1_TIME5");
    QTest::addRow("without") << QByteArray();
    QTest::addRow("any bytes") << QByteArray("\n\0\xff", 3);
}

void TestInstanceServer::answersACall()
{
    QFETCH(QByteArray, activation);
    QLocalSocket socket;
    QVERIFY(call(socket, activation.toBase64() + '\n'));
    QTRY_VERIFY(socket.canReadLine());
    QCOMPARE(socket.readAll(), InstanceCall::kAnswer);
    QCOMPARE(m_called, QList<QByteArray>{activation});
    QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
}

void TestInstanceServer::answersSeveralCallers()
{
    QLocalSocket one;
    QLocalSocket two;
    QVERIFY(call(one, "\n") && call(two, "\n"));
    QTRY_VERIFY(one.canReadLine() && two.canReadLine());
    QCOMPARE(m_called.size(), 2);
}

void TestInstanceServer::answersACallThatComesInPieces()
{
    QLocalSocket socket;
    QVERIFY(call(socket, QByteArray("token").toBase64().left(3)));
    QLocalSocket meanwhile;
    QVERIFY(call(meanwhile, "\n"));
    QTRY_COMPARE(m_called.size(), 1); // that of the other one
    socket.write(QByteArray("token").toBase64().mid(3) + '\n');
    QTRY_COMPARE(m_called.size(), 2);
    QCOMPARE(m_called.last(), "token");
}

void TestInstanceServer::leavesWhoeverSpeaksAnotherLanguage()
{
    QLocalSocket socket;
    QVERIFY(call(socket, QByteArray(InstanceCall::kLongest * 2, 'x')));
    QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
    QVERIFY(m_called.isEmpty());
}

void TestInstanceServer::isReachedByItsOwnUserAlone()
{
    constexpr auto kOthers = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                             QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    QVERIFY(!(QFileInfo(m_name).permissions() & kOthers));
}

/// Its socket is still there.
void TestInstanceServer::takesThePlaceOfOneThatWasKilled()
{
    InstanceServer next(m_name);
    QSignalSpy calls(&next, &InstanceServer::called);
    QVERIFY(next.listen());
    QLocalSocket socket;
    QVERIFY(call(socket, "\n"));
    QVERIFY(calls.wait());
    QVERIFY(m_called.isEmpty());
}

void TestInstanceServer::answersNothingOnceItIsClosed()
{
    m_server->close();
    QLocalSocket socket;
    socket.connectToServer(m_name);
    QVERIFY(!socket.waitForConnected());
    QVERIFY(m_server->listen());
    QVERIFY(call(socket, "\n"));
    QTRY_COMPARE(m_called.size(), 1);
}

void TestInstanceServer::hearsNothingWithoutAPlace()
{
    InstanceServer server{QString()};
    QVERIFY(!server.listen());
}

VANTOR_TEST_MAIN(TestInstanceServer)
#include "tst_InstanceServer.moc"
