#include "platform/instance/InstanceCall.h"
#include "platform/instance/InstanceServer.h"
#include "tests/soak/fuzz/FuzzTargets.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Must.h"

#include <QCoreApplication>
#include <QFile>
#include <QLocalSocket>

namespace {

/// A program that runs already, and what it was told.
class CalledProgram final
{
public:
    CalledProgram()
    {
        QObject::connect(&m_server, &InstanceServer::called,
                         [this](const QByteArray &activation) { m_heard.append(activation); });
        must(m_server.listen(), "a server");
    }

    /// Says this to the program, as a process of the same user may, and waits until the program has
    /// dealt with it: until it has heard a second caller, who came later.
    QByteArrayList heardOf(const QByteArray &bytes)
    {
        m_heard.clear();
        const QByteArray later = "later " + QByteArray::number(++m_calls);
        QLocalSocket caller;
        say(caller, bytes);
        QLocalSocket second;
        say(second, later.toBase64() + '\n');
        while (!m_heard.contains(later))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
        m_heard.removeOne(later);
        return m_heard;
    }

private:
    void say(QLocalSocket &socket, const QByteArray &bytes) const
    {
        socket.connectToServer(m_name);
        must(socket.waitForConnected(), "a connection");
        socket.write(bytes);
        socket.flush();
    }

    ScratchFolder m_scratch;
    QString m_name = QFile::decodeName(m_scratch.path("socket"));
    InstanceServer m_server{m_name};
    QByteArrayList m_heard;
    int m_calls = 0;
};

} // namespace

/// A call is one line. Whoever sends a line is heard with what the line says, and whoever sends
/// none, or one that is too long, is not heard.
QByteArray findingInInstanceCall(const QByteArray &input)
{
    static CalledProgram program;
    const QByteArrayList heard = program.heardOf(input);
    const qsizetype end = input.indexOf('\n');
    if (end >= 0 && end < InstanceCall::kLongest)
        return heard.value(0) == QByteArray::fromBase64(input.first(end)) && !heard.isEmpty()
                   ? ""
                   : "a call is not heard";
    return heard.isEmpty() ? "" : "heard without a call";
}
