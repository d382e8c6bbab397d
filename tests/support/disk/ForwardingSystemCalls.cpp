#include "tests/support/disk/ForwardingSystemCalls.h"

#include "platform/system/ThreadConfinement.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/Outside.h"

#include <cerrno>

namespace {

class NoConfinement final : public ThreadConfinement
{
public:
    bool isAvailable() const override { return false; }
    SystemResult<FileDescriptor> makeRules() const override { return tl::unexpected(ENOSYS); }
    SystemResult<void> allow(int, int, FolderRights) const override
    {
        return tl::unexpected(ENOSYS);
    }
    SystemResult<void> enterForGood(int) const override { return tl::unexpected(ENOSYS); }
};

} // namespace

ForwardingSystemCalls::ForwardingSystemCalls(Hook hook, const SystemCalls &next)
    : m_hook(std::move(hook)), m_next(next)
{
    openOutside();
}

ForwardingSystemCalls::~ForwardingSystemCalls()
{
    awaitBackgroundThreads();
}

void ForwardingSystemCalls::setHook(Hook hook)
{
    m_hook = std::move(hook);
    m_count = 0;
}

ForwardingSystemCalls::Hook ForwardingSystemCalls::failing(int number, int error)
{
    return [=](int current, std::string_view) { return current == number ? error : 0; };
}

ForwardingSystemCalls::Hook ForwardingSystemCalls::killedBefore(int number)
{
    return [=](int current, std::string_view) { return current >= number ? EIO : 0; };
}

template <typename Call>
auto ForwardingSystemCalls::forwarded(std::string_view name, Call call) const
{
    using Result = decltype(call());
    const int number = ++m_count;
    int error = 0;
    if (m_hook)
        doOutside([&] { error = m_hook(number, name); });
    return error != 0 ? Result(tl::unexpected(error)) : call();
}

SystemResult<FileDescriptor> ForwardingSystemCalls::openFolder(int parent, const char *relativePath,
                                                               Descent descent) const
{
    return forwarded("openFolder",
                     [&] { return m_next.openFolder(parent, relativePath, descent); });
}

SystemResult<FileDescriptor> ForwardingSystemCalls::openParent(int folder) const
{
    return forwarded("openParent", [&] { return m_next.openParent(folder); });
}

SystemResult<FileDescriptor> ForwardingSystemCalls::openRoot(const char *path) const
{
    return forwarded("openRoot", [&] { return m_next.openRoot(path); });
}

SystemResult<QByteArray> ForwardingSystemCalls::realPath(const char *path) const
{
    return forwarded("realPath", [&] { return m_next.realPath(path); });
}

SystemResult<std::size_t> ForwardingSystemCalls::readEntries(int folder,
                                                             std::span<char> buffer) const
{
    return forwarded("readEntries", [&] { return m_next.readEntries(folder, buffer); });
}

SystemResult<FileStatus> ForwardingSystemCalls::status(int parent, const char *name) const
{
    return forwarded("status", [&] { return m_next.status(parent, name); });
}

SystemResult<FileStatus> ForwardingSystemCalls::statusOf(int descriptor) const
{
    return forwarded("statusOf", [&] { return m_next.statusOf(descriptor); });
}

SystemResult<FileIdentity> ForwardingSystemCalls::identityOf(int descriptor) const
{
    return forwarded("identityOf", [&] { return m_next.identityOf(descriptor); });
}

SystemResult<FileIdentity> ForwardingSystemCalls::identity(int parent, const char *name) const
{
    return forwarded("identity", [&] { return m_next.identity(parent, name); });
}

bool ForwardingSystemCalls::mayChangeEntries(int folder) const
{
    return forwarded("mayChangeEntries",
                     [&]() -> SystemResult<bool> { return m_next.mayChangeEntries(folder); })
        .value_or(false);
}

SystemResult<FileKind> ForwardingSystemCalls::kindBehind(int parent, const char *name) const
{
    return forwarded("kindBehind", [&] { return m_next.kindBehind(parent, name); });
}

ActingUser ForwardingSystemCalls::actingUser() const
{
    return m_next.actingUser();
}

bool ForwardingSystemCalls::isInMemory(int folder) const
{
    return m_next.isInMemory(folder);
}

SystemResult<void> ForwardingSystemCalls::removeFile(int parent, const char *name) const
{
    return forwarded("removeFile", [&] { return m_next.removeFile(parent, name); });
}

SystemResult<void> ForwardingSystemCalls::removeFolder(int parent, const char *name) const
{
    return forwarded("removeFolder", [&] { return m_next.removeFolder(parent, name); });
}

SystemResult<void> ForwardingSystemCalls::setPermissions(int descriptor,
                                                         std::uint16_t permissions) const
{
    return forwarded("setPermissions",
                     [&] { return m_next.setPermissions(descriptor, permissions); });
}

SystemResult<QByteArray> ForwardingSystemCalls::readLink(int parent, const char *name) const
{
    return forwarded("readLink", [&] { return m_next.readLink(parent, name); });
}

SystemResult<bool> ForwardingSystemCalls::isLocked(int file) const
{
    return forwarded("isLocked", [&] { return m_next.isLocked(file); });
}

bool ForwardingSystemCalls::isRunning(std::int64_t process) const
{
    return m_next.isRunning(process);
}

SystemResult<QByteArrayList> ForwardingSystemCalls::programNames() const
{
    return forwarded("programNames", [] { return SystemResult<QByteArrayList>(); });
}

SystemResult<QByteArrayList> ForwardingSystemCalls::filesInUse(int) const
{
    return forwarded("filesInUse", [] { return SystemResult<QByteArrayList>(); });
}

bool ForwardingSystemCalls::isListening(const char *socket) const
{
    return m_next.isListening(socket);
}

QByteArray ForwardingSystemCalls::hostName() const
{
    return m_next.hostName();
}

SystemResult<FileDescriptor> ForwardingSystemCalls::openFile(int parent, const char *name) const
{
    return forwarded("openFile", [&] { return m_next.openFile(parent, name); });
}

SystemResult<FileDescriptor> ForwardingSystemCalls::createFile(int parent, const char *name) const
{
    return forwarded("createFile", [&] { return m_next.createFile(parent, name); });
}

SystemResult<std::size_t> ForwardingSystemCalls::read(int file, std::span<char> buffer) const
{
    return forwarded("read", [&] { return m_next.read(file, buffer); });
}

SystemResult<std::size_t> ForwardingSystemCalls::write(int file, std::span<const char> bytes) const
{
    return forwarded("write", [&] { return m_next.write(file, bytes); });
}

SystemResult<void> ForwardingSystemCalls::sync(int descriptor) const
{
    return forwarded("sync", [&] { return m_next.sync(descriptor); });
}

SystemResult<void> ForwardingSystemCalls::rename(int parent, const char *from, const char *to) const
{
    return forwarded("rename", [&] { return m_next.rename(parent, from, to); });
}

SystemResult<void> ForwardingSystemCalls::moveToFree(int parent, const char *from,
                                                     const char *to) const
{
    return forwarded("moveToFree", [&] { return m_next.moveToFree(parent, from, to); });
}

Moment ForwardingSystemCalls::now() const
{
    return m_next.now();
}

SystemResult<std::int64_t> ForwardingSystemCalls::clockDifference(int folder) const
{
    return forwarded("clockDifference", [&] { return m_next.clockDifference(folder); });
}

const ThreadConfinement &ForwardingSystemCalls::confinement() const
{
    static const NoConfinement none;
    return m_canConfine ? m_next.confinement() : none;
}
