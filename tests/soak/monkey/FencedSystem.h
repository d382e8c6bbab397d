#pragma once

#include "tests/support/calls/HookedCalls.h"

#include <QByteArray>
#include <cerrno>

/// The system with a fence around one folder. All work on files starts by opening a folder by its
/// path, so nothing outside the fence can be granted or removed, whatever the monkey picks. Without
/// a fence nothing can be opened. Set the fence before any other thread works.
class FencedSystem final : public HookedCalls
{
public:
    void setFence(const QByteArray &folder) { m_folder = folder; }

    std::optional<int> before(const char *call, int, const char *path) const override
    {
        const bool isOpening = qstrcmp(call, "openRoot") == 0;
        return isOpening && !isInside(path) ? std::optional(EACCES) : std::nullopt;
    }

private:
    bool isInside(const QByteArray &path) const
    {
        return !m_folder.isEmpty() && (path == m_folder || path.startsWith(m_folder + '/'));
    }

    QByteArray m_folder;
};
