#pragma once

#include "platform/SystemCalls.h"

#include <optional>

/// The host's system calls with a hook before each: a test can count them, fail them, or do
/// something behind the engine's back.
class ForwardingCalls : public SystemCalls
{
public:
    /// Before the call of this name; an errno makes it fail with that instead.
    virtual std::optional<int> before(const char *call, int parent, const char *name) const = 0;

    SystemResult<FileDescriptor> openFolder(int parent, const char *path,
                                            Descent descent) const override
    {
        return forwarded("openFolder", parent, path,
                         [&] { return m_host.openFolder(parent, path, descent); });
    }
    SystemResult<FileDescriptor> openParent(int folder) const override
    {
        return forwarded("openParent", folder, "..", [&] { return m_host.openParent(folder); });
    }
    SystemResult<FileDescriptor> openRoot(const char *path) const override
    {
        return forwarded("openRoot", -1, path, [&] { return m_host.openRoot(path); });
    }
    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override
    {
        return forwarded("readEntries", folder, "",
                         [&] { return m_host.readEntries(folder, buffer); });
    }
    SystemResult<FileStatus> status(int parent, const char *name) const override
    {
        return forwarded("status", parent, name, [&] { return m_host.status(parent, name); });
    }
    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        return forwarded("statusOf", descriptor, "", [&] { return m_host.statusOf(descriptor); });
    }
    SystemResult<FileIdentity> identityOf(int descriptor) const override
    {
        return forwarded("identityOf", descriptor, "",
                         [&] { return m_host.identityOf(descriptor); });
    }
    SystemResult<FileIdentity> identity(int parent, const char *name) const override
    {
        return forwarded("identity", parent, name, [&] { return m_host.identity(parent, name); });
    }
    bool mayChangeEntries(int folder) const override { return m_host.mayChangeEntries(folder); }
    bool isInMemory(int folder) const override { return m_host.isInMemory(folder); }
    SystemResult<void> removeFile(int parent, const char *name) const override
    {
        return forwarded("removeFile", parent, name,
                         [&] { return m_host.removeFile(parent, name); });
    }
    SystemResult<void> removeFolder(int parent, const char *name) const override
    {
        return forwarded("removeFolder", parent, name,
                         [&] { return m_host.removeFolder(parent, name); });
    }
    SystemResult<FileDescriptor> openFile(int parent, const char *name) const override
    {
        return forwarded("openFile", parent, name, [&] { return m_host.openFile(parent, name); });
    }
    SystemResult<FileDescriptor> createFile(int parent, const char *name) const override
    {
        return forwarded("createFile", parent, name,
                         [&] { return m_host.createFile(parent, name); });
    }
    SystemResult<std::size_t> read(int file, std::span<char> buffer) const override
    {
        return forwarded("read", file, "", [&] { return m_host.read(file, buffer); });
    }
    SystemResult<std::size_t> write(int file, std::span<const char> bytes) const override
    {
        return forwarded("write", file, "", [&] { return m_host.write(file, bytes); });
    }
    SystemResult<void> sync(int descriptor) const override
    {
        return forwarded("sync", descriptor, "", [&] { return m_host.sync(descriptor); });
    }
    SystemResult<void> rename(int parent, const char *from, const char *to) const override
    {
        return forwarded("rename", parent, from, [&] { return m_host.rename(parent, from, to); });
    }

private:
    template <typename Call>
    auto forwarded(const char *name, int parent, const char *entry, Call call) const
        -> decltype(call())
    {
        if (const auto error = before(name, parent, entry))
            return tl::unexpected(*error);
        return call();
    }

    const SystemCalls &m_host = hostSystemCalls();
};
