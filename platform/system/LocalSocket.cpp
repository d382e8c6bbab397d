#include "platform/system/LocalSocket.h"

#include "platform/system/FileDescriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

bool isSocketServed(const char *path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (std::strlen(path) >= sizeof address.sun_path)
        return false; // no program can have a socket there
    std::strcpy(address.sun_path, path);
    const FileDescriptor ours(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (!ours.isValid() || ::fcntl(ours.get(), F_SETFD, FD_CLOEXEC) != 0 ||
        ::fcntl(ours.get(), F_SETFL, O_NONBLOCK) != 0)
        return true;
    if (::connect(ours.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return true;
    return errno != ECONNREFUSED && errno != ENOENT && errno != ENOTDIR && errno != ELOOP;
}
