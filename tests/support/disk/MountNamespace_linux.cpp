#include "tests/support/disk/MountNamespace.h"

#include <QByteArray>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

bool writeTo(const char *path, const QByteArray &text)
{
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool isWritten = file >= 0 && ::write(file, text.constData(), text.size()) == text.size();
    ::close(file);
    return isWritten;
}

/// The namespace has one user and one group, with their own numbers, and with an administrator's
/// rights inside.
bool enterUserNamespace()
{
    const QByteArray user = QByteArray::number(::geteuid());
    const QByteArray group = QByteArray::number(::getegid());
    return ::unshare(CLONE_NEWUSER) == 0 && writeTo("/proc/self/setgroups", "deny") &&
           writeTo("/proc/self/uid_map", user + ' ' + user + " 1") &&
           writeTo("/proc/self/gid_map", group + ' ' + group + " 1");
}

} // namespace

bool enterMountNamespace()
{
    return (::geteuid() == 0 || enterUserNamespace()) && ::unshare(CLONE_NEWNS) == 0 &&
           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}
