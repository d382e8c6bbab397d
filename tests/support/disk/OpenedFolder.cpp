#include "tests/support/disk/OpenedFolder.h"

#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"

FileDescriptor openedFolder(const QByteArray &path)
{
    auto opened = hostSystemCalls().openRoot(path.constData());
    if (!opened)
        qFatal("%s cannot be opened: errno %d", path.constData(), opened.error());
    return std::move(*opened);
}

FileStatus statusIn(int folder, const char *name)
{
    const auto found = hostSystemCalls().status(folder, name);
    if (!found)
        qFatal("%s cannot be looked at: errno %d", name, found.error());
    return *found;
}
