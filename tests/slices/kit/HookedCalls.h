#pragma once

#include "platform/system/Descent.h"
#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "tests/support/disk/ForwardingSystemCalls.h"

#include <optional>

/// The host's system calls with a hook before each that a cleaning makes: a test can count them,
/// fail them, or do something behind the engine's back (doOutside()).
class HookedCalls : public ForwardingSystemCalls
{
public:
    /// Before the call of this name; an errno makes it fail with that instead.
    virtual std::optional<int> before(const char *call, int parent, const char *name) const = 0;

    SystemResult<FileDescriptor> openFolder(int parent, const char *path,
                                            Descent descent) const override
    {
        return hooked("openFolder", parent, path,
                      [&] { return ForwardingSystemCalls::openFolder(parent, path, descent); });
    }
    SystemResult<FileDescriptor> openParent(int folder) const override
    {
        return hooked("openParent", folder, "..",
                      [&] { return ForwardingSystemCalls::openParent(folder); });
    }
    SystemResult<FileDescriptor> openRoot(const char *path) const override
    {
        return hooked("openRoot", -1, path, [&] { return ForwardingSystemCalls::openRoot(path); });
    }
    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override
    {
        return hooked("readEntries", folder, "",
                      [&] { return ForwardingSystemCalls::readEntries(folder, buffer); });
    }
    SystemResult<FileStatus> status(int parent, const char *name) const override
    {
        return hooked("status", parent, name,
                      [&] { return ForwardingSystemCalls::status(parent, name); });
    }
    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        return hooked("statusOf", descriptor, "",
                      [&] { return ForwardingSystemCalls::statusOf(descriptor); });
    }
    SystemResult<FileIdentity> identityOf(int descriptor) const override
    {
        return hooked("identityOf", descriptor, "",
                      [&] { return ForwardingSystemCalls::identityOf(descriptor); });
    }
    SystemResult<FileIdentity> identity(int parent, const char *name) const override
    {
        return hooked("identity", parent, name,
                      [&] { return ForwardingSystemCalls::identity(parent, name); });
    }
    SystemResult<void> removeFile(int parent, const char *name) const override
    {
        return hooked("removeFile", parent, name,
                      [&] { return ForwardingSystemCalls::removeFile(parent, name); });
    }
    SystemResult<void> removeFolder(int parent, const char *name) const override
    {
        return hooked("removeFolder", parent, name,
                      [&] { return ForwardingSystemCalls::removeFolder(parent, name); });
    }
    SystemResult<void> moveToFree(int parent, const char *from, const char *to) const override
    {
        return hooked("moveToFree", parent, from,
                      [&] { return ForwardingSystemCalls::moveToFree(parent, from, to); });
    }
    SystemResult<void> rename(int parent, const char *from, const char *to) const override
    {
        return hooked("rename", parent, from,
                      [&] { return ForwardingSystemCalls::rename(parent, from, to); });
    }
    SystemResult<void> setPermissions(int descriptor, std::uint16_t permissions) const override
    {
        return hooked("setPermissions", descriptor, "", [&] {
            return ForwardingSystemCalls::setPermissions(descriptor, permissions);
        });
    }
    SystemResult<QByteArray> readLink(int parent, const char *name) const override
    {
        return hooked("readLink", parent, name,
                      [&] { return ForwardingSystemCalls::readLink(parent, name); });
    }
    SystemResult<QByteArray> realPath(const char *path) const override
    {
        return hooked("realPath", -1, path, [&] { return ForwardingSystemCalls::realPath(path); });
    }
    SystemResult<std::int64_t> clockDifference(int folder) const override
    {
        return hooked("clockDifference", folder, "",
                      [&] { return ForwardingSystemCalls::clockDifference(folder); });
    }

private:
    template <typename Call>
    auto hooked(const char *name, int parent, const char *entry, Call call) const
        -> decltype(call())
    {
        if (const auto error = before(name, parent, entry))
            return tl::unexpected(*error);
        return call();
    }
};
