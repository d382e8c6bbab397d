#include "platform/system/FileDescriptor.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Must.h"
#include "tests/support/run/TestMain.h"

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <vector>

namespace {

sockaddr_un addressOf(const QByteArray &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    must(path.size() < qsizetype(sizeof address.sun_path), "a short path");
    std::strcpy(address.sun_path, path.constData());
    return address;
}

FileDescriptor newSocket()
{
    return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

/// A program that takes connections.
FileDescriptor served(const QByteArray &path, int waiting)
{
    const sockaddr_un address = addressOf(path);
    FileDescriptor socket = newSocket();
    must(::bind(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 &&
             ::listen(socket.get(), waiting) == 0,
         "a socket");
    return socket;
}

bool isListening(const QByteArray &path)
{
    return hostSystemCalls().isListening(path.constData());
}

} // namespace

/// Local sockets, and whether somebody listens there.
class TestLocalSocket final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsThatAProgramListens();
    void waitsForNoBusyProgram();
    void knowsThatNobodyListens_data();
    void knowsThatNobodyListens();
};

void TestLocalSocket::knowsThatAProgramListens()
{
    const ScratchFolder place;
    const QByteArray path = place.path("socket");
    FileDescriptor program = served(path, 4);
    QVERIFY(isListening(path));
    place.makeLink("link", path);
    QVERIFY(isListening(place.path("link")));
    program.reset(); // as in a crash: the file stays
    QVERIFY(!isListening(path));
}

void TestLocalSocket::waitsForNoBusyProgram()
{
    const ScratchFolder place;
    const QByteArray path = place.path("socket");
    const FileDescriptor program = served(path, 0);
    const sockaddr_un address = addressOf(path);
    std::vector<FileDescriptor> waiting;
    do {
        waiting.push_back(newSocket());
    } while (::connect(waiting.back().get(), reinterpret_cast<const sockaddr *>(&address),
                       sizeof address) == 0);
    QVERIFY(isListening(path));
}

void TestLocalSocket::knowsThatNobodyListens_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("nothing there") << QByteArray("none");
    QTest::newRow("a plain file") << QByteArray("file");
    QTest::newRow("below a plain file") << QByteArray("file/socket");
    QTest::newRow("a link to nothing") << QByteArray("link");
    QTest::newRow("a link to itself") << QByteArray("circle");
    QTest::newRow("a longer path than any socket's") << QByteArray(200, 'x');
}

void TestLocalSocket::knowsThatNobodyListens()
{
    QFETCH(const QByteArray, name);
    const ScratchFolder place;
    place.makeFile("file");
    place.makeLink("link", "none");
    place.makeLink("circle", "circle");
    QVERIFY(!isListening(place.path(name)));
}

VANTOR_TEST_MAIN(TestLocalSocket)
#include "tst_LocalSocket.moc"
