#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string_view>

/// Hands every call on to another SystemCalls, but asks a hook first. The hook gets the call's
/// number (from 1) and name, and may return an errno to fail the call. Any thread; the hook is
/// called in the thread of the call.
class ForwardingSystemCalls : public SystemCalls
{
public:
    /// 0 lets the call happen.
    using Hook = std::function<int(int number, std::string_view name)>;

    explicit ForwardingSystemCalls(Hook hook = {}, const SystemCalls &next = hostSystemCalls());
    /// Waits for background threads that may be calling.
    ~ForwardingSystemCalls() override;

    /// Sets another hook and counts from 1 again. No call may be under way.
    void setHook(Hook hook);

    /// From now on like a kernel that cannot confine threads. Every confined thread costs more than
    /// all that it does in a small tree.
    void letNothingBeConfined() { m_canConfine = false; }

    /// The calls since the hook was set.
    int callCount() const { return m_count; }

    /// Fails one call.
    static Hook failing(int number, int error);
    /// Fails one call and all that follow. For the file system this is the same as a kill before
    /// that call.
    static Hook killedBefore(int number);

    SystemResult<FileDescriptor> openFolder(int parent, const char *relativePath,
                                            Descent descent) const override;
    SystemResult<FileDescriptor> openParent(int folder) const override;
    SystemResult<FileDescriptor> openRoot(const char *path) const override;
    SystemResult<QByteArray> realPath(const char *path) const override;
    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override;
    SystemResult<FileStatus> status(int parent, const char *name) const override;
    SystemResult<FileStatus> statusOf(int descriptor) const override;
    SystemResult<FileKind> kindBehind(int parent, const char *name) const override;
    SystemResult<FileIdentity> identityOf(int descriptor) const override;
    SystemResult<FileIdentity> identity(int parent, const char *name) const override;
    bool mayChangeEntries(int folder) const override;
    ActingUser actingUser() const override;
    SystemResult<FileDescriptor> openEntry(int parent, const char *name) const override;
    FileSystemTraits fileSystemTraits(int folder) const override;
    /// Whether one thread is said to remove as fast as several, so that it does it alone; the
    /// truth, unless a test says something else.
    virtual bool isForOneThread(int folder) const;
    SystemResult<void> removeFile(int parent, const char *name) const override;
    SystemResult<void> removeFolder(int parent, const char *name) const override;
    SystemResult<void> setPermissions(int descriptor, std::uint16_t permissions) const override;
    SystemResult<QByteArray> readLink(int parent, const char *name) const override;
    SystemResult<bool> isLocked(int file) const override;
    bool isRunning(std::int64_t process) const override;
    /// True: the tests may run in a container, and their results must be the same.
    bool seesAllProcesses() const override { return true; }
    /// Returns none: the result of a test must not depend on what else the machine does.
    SystemResult<QByteArrayList> programNames() const override;
    /// Returns none, for the same reason.
    SystemResult<QByteArrayList> filesInUse(int folder) const override;
    bool isListening(const char *socket) const override;
    QByteArray hostName() const override;
    SystemResult<FileDescriptor> openFile(int parent, const char *name) const override;
    SystemResult<FileDescriptor> createFile(int parent, const char *name) const override;
    SystemResult<std::size_t> read(int file, std::span<char> buffer) const override;
    SystemResult<std::size_t> write(int file, std::span<const char> bytes) const override;
    SystemResult<std::size_t> writeAt(int file, std::span<const char> bytes,
                                      std::int64_t offset) const override;
    SystemResult<void> sync(int descriptor) const override;
    SystemResult<void> rename(int parent, const char *from, const char *to) const override;
    SystemResult<void> moveToFree(int parent, const char *from, const char *to) const override;
    Moment now() const override;
    SystemResult<std::int64_t> clockDifference(int folder) const override;
    const ThreadConfinement &confinement() const override;

protected:
    struct CallMade
    {
        const char *name;
        int folder;        ///< or whatever is open on which it works; -1 for none
        const char *entry; ///< the name or path on which it works; "" for none
    };
    /// For those who derive from this: before each call that can fail, those that confine threads
    /// among them. Runs on the thread of the call, before the hook. An errno fails the call.
    virtual int beforeCall(const CallMade &made) const;

private:
    class Confinement;

    template <typename Call>
    auto forwarded(const CallMade &made, Call call) const -> decltype(call());

    Hook m_hook;
    bool m_canConfine = true;
    const SystemCalls &m_next;
    const std::unique_ptr<const ThreadConfinement> m_confinement;
    mutable std::atomic<int> m_count = 0;
};
