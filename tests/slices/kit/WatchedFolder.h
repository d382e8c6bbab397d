#pragma once

#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/Must.h"

#include <QByteArray>
#include <functional>
#include <sys/stat.h>

/// Watches one folder: an action runs right before it is listed, and may make the listing fail. A
/// process that changes the folder's rights is ended: a look at the rights afterwards is not
/// enough, because they are given back.
class WatchedFolder final : public HookedCalls
{
public:
    explicit WatchedFolder(
        const QByteArray &folder, std::function<int()> before = [] { return 0; })
        : m_before(std::move(before))
    {
        must(::lstat(folder.constData(), &m_folder) == 0, "a folder to watch");
    }

    std::optional<int> before(const char *call, int parent, const char *) const override
    {
        const bool isListing = qstrcmp(call, "readEntries") == 0;
        const bool isRightsChange = qstrcmp(call, "setPermissions") == 0;
        if (!(isListing || isRightsChange) || !isWatched(parent))
            return {};
        if (isRightsChange)
            qFatal("tried to change the rights");
        return m_before();
    }

private:
    bool isWatched(int folder) const
    {
        struct stat found
        {
        };
        return ::fstat(folder, &found) == 0 && found.st_ino == m_folder.st_ino;
    }

    std::function<int()> m_before;
    struct stat m_folder
    {
    };
};
