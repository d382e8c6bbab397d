#pragma once

#include <QLocalServer>

/// Where the first program hears of a second start. It answers from its event loop, so that an
/// answer proves that it works. Only the user's own programs can reach it. Owned by the start-up;
/// main thread only.
class InstanceServer final : public QObject
{
    Q_OBJECT

public:
    /// Listens once listen() is called. The socket's name may be empty: then nothing is heard.
    explicit InstanceServer(QString socket, QObject *parent = nullptr);

    /// Takes the place of a program that has ended: call it only with the lock in hand.
    bool listen();
    /// Why it cannot listen.
    QString error() const { return m_server.errorString(); }
    /// Answers no more calls.
    void close();

Q_SIGNALS:
    /// A second start wants the window in front. `activation` is the desktop's permission for that;
    /// empty where the desktop gives none.
    void called(const QByteArray &activation);

private:
    void welcome();
    void answer(QLocalSocket &caller);

    QString m_socket;
    QLocalServer m_server;
};
