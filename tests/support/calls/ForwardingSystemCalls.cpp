#include "tests/support/calls/ForwardingSystemCalls.h"

#include "platform/system/ThreadConfinement.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/Outside.h"

#include <cerrno>

namespace {

constexpr int kNoFolder = -1;

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

template <typename Call>
auto ForwardingSystemCalls::forwarded(const CallMade &made, Call call) const -> decltype(call())
{
    const int number = ++m_count;
    int error = beforeCall(made);
    if (error == 0 && m_hook)
        doOutside([&] { error = m_hook(number, made.name); });
    if (error != 0)
        return tl::unexpected(error);
    return call();
}

/// Hands on what confines threads.
class ForwardingSystemCalls::Confinement final : public ThreadConfinement
{
public:
    explicit Confinement(const ForwardingSystemCalls &calls) : m_calls(calls) {}

    bool isAvailable() const override { return next().isAvailable(); }
    SystemResult<FileDescriptor> makeRules() const override
    {
        return m_calls.forwarded({"makeRules", kNoFolder, ""}, [&] { return next().makeRules(); });
    }
    SystemResult<void> allow(int rules, int folder, FolderRights rights) const override
    {
        return m_calls.forwarded({"allow", folder, ""},
                                 [&] { return next().allow(rules, folder, rights); });
    }
    SystemResult<void> enterForGood(int rules) const override
    {
        return m_calls.forwarded({"enterForGood", kNoFolder, ""},
                                 [&] { return next().enterForGood(rules); });
    }

private:
    const ThreadConfinement &next() const { return m_calls.m_next.confinement(); }

    const ForwardingSystemCalls &m_calls;
};

ForwardingSystemCalls::ForwardingSystemCalls(Hook hook, const SystemCalls &next)
    : m_hook(std::move(hook)), m_next(next), m_confinement(std::make_unique<Confinement>(*this))
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

int ForwardingSystemCalls::beforeCall(const CallMade &) const
{
    return 0;
}

SystemResult<FileDescriptor> ForwardingSystemCalls::openFolder(int parent, const char *relativePath,
                                                               Descent descent) const
{
    return forwarded({"openFolder", parent, relativePath},
                     [&] { return m_next.openFolder(parent, relativePath, descent); });
}

SystemResult<FileDescriptor> ForwardingSystemCalls::openParent(int folder) const
{
    return forwarded({"openParent", folder, ".."}, [&] { return m_next.openParent(folder); });
}

SystemResult<FileDescriptor> ForwardingSystemCalls::openRoot(const char *path) const
{
    return forwarded({"openRoot", kNoFolder, path}, [&] { return m_next.openRoot(path); });
}

SystemResult<QByteArray> ForwardingSystemCalls::realPath(const char *path) const
{
    return forwarded({"realPath", kNoFolder, path}, [&] { return m_next.realPath(path); });
}

SystemResult<std::size_t> ForwardingSystemCalls::readEntries(int folder,
                                                             std::span<char> buffer) const
{
    return forwarded({"readEntries", folder, ""},
                     [&] { return m_next.readEntries(folder, buffer); });
}

SystemResult<FileStatus> ForwardingSystemCalls::status(int parent, const char *name) const
{
    return forwarded({"status", parent, name}, [&] { return m_next.status(parent, name); });
}

SystemResult<FileStatus> ForwardingSystemCalls::statusOf(int descriptor) const
{
    return forwarded({"statusOf", descriptor, ""}, [&] { return m_next.statusOf(descriptor); });
}

SystemResult<FileIdentity> ForwardingSystemCalls::identityOf(int descriptor) const
{
    return forwarded({"identityOf", descriptor, ""}, [&] { return m_next.identityOf(descriptor); });
}

SystemResult<FileIdentity> ForwardingSystemCalls::identity(int parent, const char *name) const
{
    return forwarded({"identity", parent, name}, [&] { return m_next.identity(parent, name); });
}

bool ForwardingSystemCalls::mayChangeEntries(int folder) const
{
    return forwarded({"mayChangeEntries", folder, ""},
                     [&]() -> SystemResult<bool> { return m_next.mayChangeEntries(folder); })
        .value_or(false);
}

SystemResult<FileKind> ForwardingSystemCalls::kindBehind(int parent, const char *name) const
{
    return forwarded({"kindBehind", parent, name}, [&] { return m_next.kindBehind(parent, name); });
}

ActingUser ForwardingSystemCalls::actingUser() const
{
    return m_next.actingUser();
}

bool ForwardingSystemCalls::isForOneThread(int folder) const
{
    return !m_next.fileSystemTraits(folder).gainsByThreads;
}

SystemResult<FileDescriptor> ForwardingSystemCalls::openEntry(int parent, const char *name) const
{
    return forwarded({"openEntry", parent, name}, [&] { return m_next.openEntry(parent, name); });
}

FileSystemTraits ForwardingSystemCalls::fileSystemTraits(int folder) const
{
    FileSystemTraits traits = m_next.fileSystemTraits(folder);
    traits.gainsByThreads = !isForOneThread(folder);
    return traits;
}

SystemResult<void> ForwardingSystemCalls::removeFile(int parent, const char *name) const
{
    return forwarded({"removeFile", parent, name}, [&] { return m_next.removeFile(parent, name); });
}

SystemResult<void> ForwardingSystemCalls::removeFolder(int parent, const char *name) const
{
    return forwarded({"removeFolder", parent, name},
                     [&] { return m_next.removeFolder(parent, name); });
}

SystemResult<void> ForwardingSystemCalls::setPermissions(int descriptor,
                                                         std::uint16_t permissions) const
{
    return forwarded({"setPermissions", descriptor, ""},
                     [&] { return m_next.setPermissions(descriptor, permissions); });
}

SystemResult<QByteArray> ForwardingSystemCalls::readLink(int parent, const char *name) const
{
    return forwarded({"readLink", parent, name}, [&] { return m_next.readLink(parent, name); });
}

SystemResult<bool> ForwardingSystemCalls::isLocked(int file) const
{
    return forwarded({"isLocked", file, ""}, [&] { return m_next.isLocked(file); });
}

bool ForwardingSystemCalls::isRunning(std::int64_t process) const
{
    return m_next.isRunning(process);
}

SystemResult<QByteArrayList> ForwardingSystemCalls::programNames() const
{
    return forwarded({"programNames", kNoFolder, ""},
                     [] { return SystemResult<QByteArrayList>(); });
}

SystemResult<QByteArrayList> ForwardingSystemCalls::filesInUse(int) const
{
    return forwarded({"filesInUse", kNoFolder, ""}, [] { return SystemResult<QByteArrayList>(); });
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
    return forwarded({"openFile", parent, name}, [&] { return m_next.openFile(parent, name); });
}

SystemResult<FileDescriptor> ForwardingSystemCalls::createFile(int parent, const char *name) const
{
    return forwarded({"createFile", parent, name}, [&] { return m_next.createFile(parent, name); });
}

SystemResult<std::size_t> ForwardingSystemCalls::read(int file, std::span<char> buffer) const
{
    return forwarded({"read", file, ""}, [&] { return m_next.read(file, buffer); });
}

SystemResult<std::size_t> ForwardingSystemCalls::write(int file, std::span<const char> bytes) const
{
    return forwarded({"write", file, ""}, [&] { return m_next.write(file, bytes); });
}

SystemResult<std::size_t> ForwardingSystemCalls::writeAt(int file, std::span<const char> bytes,
                                                         std::int64_t offset) const
{
    return forwarded({"writeAt", file, ""}, [&] { return m_next.writeAt(file, bytes, offset); });
}

SystemResult<void> ForwardingSystemCalls::sync(int descriptor) const
{
    return forwarded({"sync", descriptor, ""}, [&] { return m_next.sync(descriptor); });
}

SystemResult<void> ForwardingSystemCalls::rename(int parent, const char *from, const char *to) const
{
    return forwarded({"rename", parent, from}, [&] { return m_next.rename(parent, from, to); });
}

SystemResult<void> ForwardingSystemCalls::moveToFree(int parent, const char *from,
                                                     const char *to) const
{
    return forwarded({"moveToFree", parent, from},
                     [&] { return m_next.moveToFree(parent, from, to); });
}

Moment ForwardingSystemCalls::now() const
{
    return m_next.now();
}

SystemResult<std::int64_t> ForwardingSystemCalls::clockDifference(int folder) const
{
    return forwarded({"clockDifference", folder, ""},
                     [&] { return m_next.clockDifference(folder); });
}

const ThreadConfinement &ForwardingSystemCalls::confinement() const
{
    static const NoConfinement none;
    return m_canConfine ? *m_confinement : static_cast<const ThreadConfinement &>(none);
}
