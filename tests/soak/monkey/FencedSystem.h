#pragma once

#include "tests/support/calls/ForwardingSystemCalls.h"

#include <cerrno>

/// The system with a fence around one folder. All work on files starts by opening a folder by its
/// path, so nothing outside the fence can be granted or removed, whatever the monkey picks. Without
/// a fence nothing can be opened. Set the fence before any other thread works.
class FencedSystem final : public ForwardingSystemCalls
{
public:
    void setFence(const QByteArray &folder) { m_folder = folder; }

    SystemResult<FileDescriptor> openRoot(const char *path) const override
    {
        const QByteArray asked(path);
        if (m_folder.isEmpty() || !(asked == m_folder || asked.startsWith(m_folder + '/')))
            return tl::unexpected(EACCES);
        return ForwardingSystemCalls::openRoot(path);
    }

private:
    QByteArray m_folder;
};
