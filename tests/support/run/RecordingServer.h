#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTcpServer>

/// A small web server of the test's own, on a free port of this machine: serves the pages that it
/// was given and writes down which were asked for, in order. Anything else is "404" with a body.
class RecordingServer final : public QObject
{
    Q_OBJECT

public:
    RecordingServer();

    /// The address of a path ("/page").
    QString address(const QString &path) const;

    void servePage(const QString &path, const QByteArray &body);
    /// Answers with the bytes as they are and closes the connection; none at all just closes it.
    void serveRaw(const QString &path, const QByteArray &answer);
    /// Takes the request and never answers.
    void keepWaiting(const QString &path);

    /// The paths in the order in which they were asked for.
    QStringList requests() const { return m_requests; }
    int requestCount(const QString &path) const { return int(m_requests.count(path)); }
    /// The request lines and headers, in the same order.
    QList<QByteArray> heads() const { return m_heads; }

Q_SIGNALS:
    void requested(const QString &path);

private:
    void accept();
    void answer(QTcpSocket &socket);

    QTcpServer m_server;
    QHash<QString, QByteArray> m_answers;
    QSet<QString> m_unanswered;
    QStringList m_requests;
    QList<QByteArray> m_heads;
};
