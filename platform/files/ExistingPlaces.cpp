#include "platform/files/ExistingPlaces.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"

namespace {

bool exists(const SystemCalls &calls, const FileAccess &access, const FileUrl &url)
{
    const std::optional<AnchoredPath> place = access.anchoredPath(url);
    if (!place)
        return false;
    const auto [around, name] = anchoredEntry(*place);
    const auto folder = openAnchored(calls, around, Descent::Strict);
    return folder && calls.status(folder->get(), name.constData());
}

} // namespace

FileUrls existingPlaces(const SystemCalls &calls, FileAccess &access, const FileUrls &places,
                        const std::stop_token &stop)
{
    const AccessScope scope(access);
    FileUrls existing;
    for (const FileUrl &url : places) {
        if (!stop.stop_requested() && exists(calls, access, url))
            existing.append(url);
    }
    return existing;
}
