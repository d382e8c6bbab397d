#include "tests/support/disk/TinyDisk.h"

#include "tests/support/disk/MountNamespace.h"
#include "tests/support/run/ChildProcess.h"

#include <QFile>
#include <sys/mount.h>

namespace {

bool mountTinyDisk(const QByteArray &folder, int bytes)
{
    const QByteArray size = "size=" + QByteArray::number(bytes);
    return enterMountNamespace() && ::mount("tiny", folder, "tmpfs", 0, size) == 0;
}

} // namespace

int runWithTinyDisk(const QString &folder, int bytes, const std::function<int()> &work)
{
    return runInChild(
               ChildUser::Same,
               [&] { return mountTinyDisk(QFile::encodeName(folder), bytes) ? work() : kNoDisk; })
        .exitCode;
}
