#include "platform/instance/InstanceServer.h"

#include "platform/instance/InstanceCall.h"

#include <QLocalSocket>

InstanceServer::InstanceServer(QString socket, QObject *parent)
    : QObject(parent), m_socket(std::move(socket))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &InstanceServer::welcome);
}

bool InstanceServer::listen()
{
    if (m_socket.isEmpty())
        return false;
    QLocalServer::removeServer(m_socket); // left behind by a program that was ended
    return m_server.listen(m_socket);
}

void InstanceServer::close()
{
    m_server.close();
}

void InstanceServer::welcome()
{
    while (QLocalSocket *caller = m_server.nextPendingConnection()) {
        caller->setReadBufferSize(InstanceCall::kLongest);
        connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
        connect(caller, &QLocalSocket::readyRead, this, [this, caller] { answer(*caller); });
        answer(*caller);
    }
}

void InstanceServer::answer(QLocalSocket &caller)
{
    if (!caller.canReadLine()) {
        if (caller.bytesAvailable() >= InstanceCall::kLongest)
            caller.abort(); // no call of ours
        return;
    }
    Q_EMIT called(QByteArray::fromBase64(caller.readLine()));
    caller.write(InstanceCall::kAnswer);
    caller.disconnectFromServer();
}
