#include "tests/support/run/RecordingServer.h"

#include <QTcpSocket>

namespace {

QByteArray pageAnswer(const QByteArray &status, const QByteArray &body)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: text/html\r\nConnection: close\r\n" +
           "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

} // namespace

RecordingServer::RecordingServer()
{
    connect(&m_server, &QTcpServer::newConnection, this, &RecordingServer::accept);
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("the test's server cannot listen: %s", qPrintable(m_server.errorString()));
}

QString RecordingServer::address(const QString &path) const
{
    return QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(path);
}

void RecordingServer::servePage(const QString &path, const QByteArray &body)
{
    m_answers.insert(path, pageAnswer("200 OK", body));
}

void RecordingServer::serveRaw(const QString &path, const QByteArray &answer)
{
    m_answers.insert(path, answer);
}

void RecordingServer::serveWithoutEnd(const QString &path)
{
    m_endless.insert(path);
}

void RecordingServer::keepWaiting(const QString &path)
{
    m_unanswered.insert(path);
}

void RecordingServer::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(*socket); });
    }
}

void RecordingServer::answer(QTcpSocket &socket)
{
    if (!socket.peek(socket.bytesAvailable()).contains("\r\n\r\n"))
        return;
    m_heads.append(socket.readAll());
    const QString path = QString::fromLatin1(m_heads.last().split(' ').value(1));
    m_requests.append(path);
    Q_EMIT requested(path);
    if (m_unanswered.contains(path))
        return;
    if (m_endless.contains(path)) {
        sendWithoutEnd(socket);
        return;
    }
    socket.write(
        m_answers.value(path, pageAnswer("404 Not Found", "<p>There is no such page.</p>")));
    socket.disconnectFromHost();
}

void RecordingServer::sendWithoutEnd(QTcpSocket &socket)
{
    constexpr qsizetype kPart = qsizetype{64} * 1024;
    socket.write("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nConnection: close\r\n\r\n");
    connect(&socket, &QTcpSocket::bytesWritten, this, [this, &socket](qint64 bytes) {
        m_bytesSent += bytes;
        if (socket.bytesToWrite() == 0)
            socket.write(QByteArray(kPart, 'x'));
    });
}
