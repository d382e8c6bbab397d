#include "platform/instance/InstanceLock.h"

#include "platform/system/SystemResult.h"

#include <QFile>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace {

constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY | O_NONBLOCK;
constexpr mode_t kOwnerOnly = 0600;

/// EWOULDBLOCK when another program holds the lock.
SystemResult<FileDescriptor> locked(const QString &path)
{
    FileDescriptor file(::open(QFile::encodeName(path).constData(), kFlags, kOwnerOnly));
    if (!file.isValid() || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return tl::unexpected(errno);
    return file;
}

} // namespace

InstanceLock::InstanceLock(QStringList files) : m_files(std::move(files))
{
}

/// A lock of another program on any of the files is enough to notice it.
InstanceRole InstanceLock::take()
{
    if (!m_held.empty())
        return InstanceRole::First;
    std::vector<FileDescriptor> taken;
    for (const QString &path : m_files) {
        auto file = locked(path);
        if (file)
            taken.push_back(std::move(*file));
        else if (file.error() == EWOULDBLOCK)
            return InstanceRole::Second;
    }
    m_held = std::move(taken);
    return m_held.empty() ? InstanceRole::Unknown : InstanceRole::First;
}
