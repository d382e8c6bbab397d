#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTcpServer>

/// The test's own small web server, on a free port of this machine. It serves the pages that it was
/// given and records the requests in order. Any other page is "404" with a body.
class RecordingServer final : public QObject
{
    Q_OBJECT

public:
    RecordingServer();

    /// The address of a path ("/page").
    QString address(const QString &path) const;

    void servePage(const QString &path, const QByteArray &body);
    /// Answers with exactly these bytes and closes the connection; without bytes it only closes the
    /// connection.
    void serveRaw(const QString &path, const QByteArray &answer);
    /// Answers with a page that has no end, for as long as somebody reads it.
    void serveWithoutEnd(const QString &path);
    /// Accepts the request and never answers.
    void keepWaiting(const QString &path);

    /// The paths in the order in which they were asked for.
    QStringList requests() const { return m_requests; }
    int requestCount(const QString &path) const { return int(m_requests.count(path)); }
    /// How much of pages without an end has been taken from this server.
    qint64 bytesSent() const { return m_bytesSent; }
    /// The request lines and headers, in the same order.
    QList<QByteArray> heads() const { return m_heads; }

Q_SIGNALS:
    void requested(const QString &path);

private:
    void accept();
    void answer(QTcpSocket &socket);
    void sendWithoutEnd(QTcpSocket &socket);

    QTcpServer m_server;
    QHash<QString, QByteArray> m_answers;
    QSet<QString> m_unanswered;
    QSet<QString> m_endless;
    qint64 m_bytesSent = 0;
    QStringList m_requests;
    QList<QByteArray> m_heads;
};
