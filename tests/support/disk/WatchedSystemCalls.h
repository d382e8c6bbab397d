#pragma once

#include "tests/support/disk/ForwardingSystemCalls.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"

#include <atomic>
#include <functional>

enum class WatchedCall {
    OpenFolder,
    OpenParent,
    ReadEntries,
    Status,
    StatusOf,
    KindBehind,
    MayChangeEntries
};

/// The system, with somebody looking on: before each call of a walk or a measure `before` is told
/// its number, from 0 on, what it is and the name that it is about ("" where there is none). It may
/// change the files meanwhile, or answer an errno with which the call is to fail. It is called on
/// whatever thread makes the call. Each listing comes sorted by name, so that a test knows what
/// comes first on any file system.
class WatchedSystemCalls final : public ForwardingSystemCalls
{
public:
    using Before = std::function<int(int number, WatchedCall call, const char *name)>;

    explicit WatchedSystemCalls(Before before) : m_before(std::move(before)) {}
    ~WatchedSystemCalls() override { awaitBackgroundThreads(); }

    int count() const { return m_count; }

    SystemResult<FileDescriptor> openFolder(int parent, const char *relativePath,
                                            Descent descent) const override
    {
        return watched<SystemResult<FileDescriptor>>(WatchedCall::OpenFolder, relativePath, [&] {
            return ForwardingSystemCalls::openFolder(parent, relativePath, descent);
        });
    }
    SystemResult<FileDescriptor> openParent(int folder) const override
    {
        return watched<SystemResult<FileDescriptor>>(
            WatchedCall::OpenParent, "", [&] { return ForwardingSystemCalls::openParent(folder); });
    }
    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override
    {
        return watched<SystemResult<std::size_t>>(WatchedCall::ReadEntries, "", [&] {
            auto filled = ForwardingSystemCalls::readEntries(folder, buffer);
            if (filled)
                sortRecords(buffer.first(*filled));
            return filled;
        });
    }
    SystemResult<FileStatus> status(int parent, const char *name) const override
    {
        return watched<SystemResult<FileStatus>>(
            WatchedCall::Status, name, [&] { return ForwardingSystemCalls::status(parent, name); });
    }
    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        return watched<SystemResult<FileStatus>>(
            WatchedCall::StatusOf, "", [&] { return ForwardingSystemCalls::statusOf(descriptor); });
    }
    SystemResult<FileKind> kindBehind(int parent, const char *name) const override
    {
        return watched<SystemResult<FileKind>>(WatchedCall::KindBehind, name, [&] {
            return ForwardingSystemCalls::kindBehind(parent, name);
        });
    }
    bool mayChangeEntries(int folder) const override
    {
        return m_before(m_count++, WatchedCall::MayChangeEntries, "") == 0 &&
               ForwardingSystemCalls::mayChangeEntries(folder);
    }

private:
    static void sortRecords(std::span<char> records);

    template <typename Result, typename Call>
    Result watched(WatchedCall call, const char *name, Call forward) const
    {
        const int error = m_before(m_count++, call, name);
        return error != 0 ? Result(tl::unexpected(error)) : forward();
    }

    const Before m_before;
    mutable std::atomic<int> m_count = 0;
};
