#pragma once

#include "platform/SystemCalls.h"

/// Hands every call on to the system. Tests derive from it and bend the one call that they are
/// about.
class ForwardingSystemCalls : public SystemCalls
{
public:
    SystemResult<FileDescriptor> openFolder(int parent, const char *relativePath,
                                            Descent descent) const override
    {
        return m_host.openFolder(parent, relativePath, descent);
    }
    SystemResult<FileDescriptor> openParent(int folder) const override
    {
        return m_host.openParent(folder);
    }
    SystemResult<FileDescriptor> openRoot(const char *path) const override
    {
        return m_host.openRoot(path);
    }
    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override
    {
        return m_host.readEntries(folder, buffer);
    }
    SystemResult<FileStatus> status(int parent, const char *name) const override
    {
        return m_host.status(parent, name);
    }
    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        return m_host.statusOf(descriptor);
    }
    SystemResult<FileKind> kindBehind(int parent, const char *name) const override
    {
        return m_host.kindBehind(parent, name);
    }
    SystemResult<FileIdentity> identityOf(int descriptor) const override
    {
        return m_host.identityOf(descriptor);
    }
    SystemResult<FileIdentity> identity(int parent, const char *name) const override
    {
        return m_host.identity(parent, name);
    }
    bool mayChangeEntries(int folder) const override { return m_host.mayChangeEntries(folder); }
    ActingUser actingUser() const override { return m_host.actingUser(); }
    SystemResult<void> removeFile(int parent, const char *name) const override
    {
        return m_host.removeFile(parent, name);
    }
    SystemResult<void> removeFolder(int parent, const char *name) const override
    {
        return m_host.removeFolder(parent, name);
    }
    SystemResult<FileDescriptor> openFile(int parent, const char *name) const override
    {
        return m_host.openFile(parent, name);
    }
    SystemResult<FileDescriptor> createFile(int parent, const char *name) const override
    {
        return m_host.createFile(parent, name);
    }
    SystemResult<std::size_t> read(int file, std::span<char> buffer) const override
    {
        return m_host.read(file, buffer);
    }
    SystemResult<std::size_t> write(int file, std::span<const char> bytes) const override
    {
        return m_host.write(file, bytes);
    }
    SystemResult<void> sync(int descriptor) const override { return m_host.sync(descriptor); }
    SystemResult<void> rename(int parent, const char *from, const char *to) const override
    {
        return m_host.rename(parent, from, to);
    }

private:
    const SystemCalls &m_host = hostSystemCalls();
};
