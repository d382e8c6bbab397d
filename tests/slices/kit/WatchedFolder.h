#pragma once

#include "tests/support/calls/ForwardingSystemCalls.h"

#include <QByteArray>

/// Watches one folder: an action runs right before it is listed, and may make the listing fail. A
/// process that changes the folder's rights is ended: a look at the rights afterwards is not
/// enough, because they are given back.
class WatchedFolder final : public ForwardingSystemCalls
{
public:
    explicit WatchedFolder(
        const QByteArray &folder, std::function<int()> before = [] { return 0; })
        : m_before(std::move(before))
    {
        const auto opened = ForwardingSystemCalls::openRoot(folder.constData());
        m_inode = ForwardingSystemCalls::statusOf(opened->get())->inode;
    }

    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override
    {
        const int error = isWatched(folder) ? m_before() : 0;
        if (error != 0)
            return tl::unexpected(error);
        return ForwardingSystemCalls::readEntries(folder, buffer);
    }

    SystemResult<void> setPermissions(int folder, std::uint16_t permissions) const override
    {
        if (isWatched(folder))
            qFatal("tried to change the rights");
        return ForwardingSystemCalls::setPermissions(folder, permissions);
    }

private:
    bool isWatched(int folder) const
    {
        const auto status = ForwardingSystemCalls::statusOf(folder);
        return status && status->inode == m_inode;
    }

    std::function<int()> m_before;
    std::uint64_t m_inode = 0;
};
