#include "platform/files/ExistingLocations.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"

namespace {

bool exists(const SystemCalls &calls, const FileAccess &access, const FileUrl &url)
{
    const std::optional<AnchoredPath> location = access.anchoredPath(url);
    if (!location)
        return false;
    const auto [around, name] = anchoredEntry(*location);
    const auto folder = openAnchored(calls, around, Descent::Strict);
    return folder && calls.status(folder->get(), name.constData());
}

} // namespace

FileUrls existingLocations(const SystemCalls &calls, FileAccess &access, const FileUrls &locations,
                           const std::stop_token &stop)
{
    const AccessScope scope(access);
    FileUrls existing;
    for (const FileUrl &url : locations) {
        if (!stop.stop_requested() && exists(calls, access, url))
            existing.append(url);
    }
    return existing;
}
