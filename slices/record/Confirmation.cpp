#include "slices/record/Confirmation.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"

namespace {

/// A folder is asked itself, by its descriptor: its name may be that of a link or of a mount.
SystemResult<FileIdentity> identityAt(const SystemCalls &calls, const AnchoredPath &path)
{
    if (const auto folder = openAnchored(calls, path, Descent::Strict))
        return calls.identityOf(folder->get());
    const auto [around, name] = anchoredEntry(path);
    const auto folder = openAnchored(calls, around, Descent::Strict);
    return folder ? calls.identity(folder->get(), name.constData())
                  : tl::unexpected(folder.error());
}

} // namespace

LocationIdentities lookAtLocations(const SystemCalls &calls, const FileAccess &access,
                                   const FileUrls &locations, const std::stop_token &stop)
{
    LocationIdentities identities;
    for (const FileUrl &location : locations) {
        if (stop.stop_requested())
            break;
        const auto path = access.anchoredPath(location);
        if (!path || !path->anchor)
            continue;
        if (const auto identity = identityAt(calls, *path))
            identities.insert(location.path(), *identity);
    }
    return identities;
}
