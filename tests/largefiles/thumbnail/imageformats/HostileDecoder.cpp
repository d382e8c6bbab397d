#include <QImage>
#include <QImageIOPlugin>
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char kMark[] = "HOSTILE\n";

bool connects(int port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = ::htons(in_port_t(port));
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const auto *const plain = reinterpret_cast<const sockaddr *>(&address);
    return socket >= 0 && ::connect(socket, plain, sizeof address) == 0;
}

bool startsAProgram()
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::execl("/bin/true", "true", nullptr);
        ::_exit(1);
    }
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

/// Does what the picture says. True when it has succeeded.
bool does(const QByteArray &act, const QByteArray &argument)
{
    if (act == "read")
        return ::open(argument.constData(), O_RDONLY) >= 0;
    if (act == "write")
        return ::open(argument.constData(), O_WRONLY | O_APPEND) >= 0;
    if (act == "make")
        return ::open(argument.constData(), O_WRONLY | O_CREAT, 0600) >= 0;
    if (act == "remove")
        return ::unlink(argument.constData()) == 0;
    if (act == "give away")
        return ::chmod(argument.constData(), 0777) == 0;
    if (act == "connect")
        return connects(argument.toInt());
    if (act == "start")
        return startsAProgram();
    return act == "nothing";
}

} // namespace

/// Shows a white dot when it has done what the picture told it to do, and a black one otherwise.
class HostileHandler final : public QImageIOHandler
{
public:
    bool canRead() const override { return device()->peek(sizeof kMark).startsWith(kMark); }

    bool read(QImage *image) override
    {
        const QByteArrayList lines = device()->readAll().split('\n');
        *image = QImage(1, 1, QImage::Format_RGB32);
        image->fill(does(lines.value(1), lines.value(2)) ? Qt::white : Qt::black);
        return true;
    }

    QVariant option(ImageOption option) const override
    {
        return option == Size ? QVariant(QSize(1, 1)) : QVariant();
    }
    bool supportsOption(ImageOption option) const override { return option == Size; }
};

class HostileDecoder final : public QImageIOPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QImageIOHandlerFactoryInterface_iid FILE "hostile.json")

public:
    Capabilities capabilities(QIODevice *device, const QByteArray &format) const override
    {
        const bool isOurs =
            device ? device->peek(sizeof kMark).startsWith(kMark) : format == "webp";
        return isOurs ? CanRead : Capabilities();
    }

    QImageIOHandler *create(QIODevice *device, const QByteArray &) const override
    {
        auto *const handler = new HostileHandler; // the toolkit's from here on
        handler->setDevice(device);
        handler->setFormat("webp");
        return handler;
    }
};

#include "HostileDecoder.moc"
