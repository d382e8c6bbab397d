#include "tests/support/TinyDisk.h"

#include "tests/support/ChildProcess.h"

#include <QFile>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

/// Whoever is not root becomes the root of a user namespace first.
bool mountTinyDisk(const QByteArray &folder, int bytes)
{
    const int user = ::geteuid() == 0 ? 0 : CLONE_NEWUSER;
    const QByteArray size = "size=" + QByteArray::number(bytes);
    return ::unshare(CLONE_NEWNS | user) == 0
           && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
           && ::mount("tiny", folder, "tmpfs", 0, size) == 0;
}

} // namespace

int runWithTinyDisk(const QString &folder, int bytes, const std::function<int()> &work)
{
    return runInChild(ChildUser::Same, [&] {
               return mountTinyDisk(QFile::encodeName(folder), bytes) ? work() : kNoDisk;
           }).exitCode;
}
