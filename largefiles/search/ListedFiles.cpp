#include "largefiles/search/ListedFiles.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"

#include <algorithm>
#include <cerrno>
#include <limits>

namespace {

SystemResult<FileStatus> statusOf(const SystemCalls &calls, const FileAccess &access,
                                  const FileUrl &file)
{
    const auto place = access.anchoredPath(file);
    if (!place)
        return tl::unexpected(EACCES);
    const AnchoredEntry entry = anchoredEntry(*place);
    const auto folder = openOnVolume(calls, entry.folder);
    if (!folder)
        return tl::unexpected(folder.error());
    return calls.status(folder->get(), entry.name.constData());
}

bool hasVanished(const SystemResult<FileStatus> &status)
{
    if (status)
        return status->kind != FileKind::Regular;
    return status.error() == ENOENT || status.error() == ENOTDIR || status.error() == ELOOP;
}

qint64 sizeFrom(const SystemResult<FileStatus> &status)
{
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<qint64>::max());
    if (!status || status->kind != FileKind::Regular)
        return 0;
    return static_cast<qint64>(std::min(status->size, kMost));
}

} // namespace

FileUrls vanishedFiles(const SystemCalls &calls, FileAccess &access, const FileUrls &files,
                       const std::stop_token &stop)
{
    const AccessScope scope(access);
    FileUrls vanished;
    for (const FileUrl &file : files) {
        if (stop.stop_requested())
            return {};
        if (hasVanished(statusOf(calls, access, file)))
            vanished.append(file);
    }
    return vanished;
}

QList<qint64> currentSizes(const SystemCalls &calls, FileAccess &access, const FileUrls &files,
                           const std::stop_token &stop)
{
    const AccessScope scope(access);
    QList<qint64> sizes;
    for (const FileUrl &file : files) {
        if (stop.stop_requested())
            return sizes;
        sizes.append(sizeFrom(statusOf(calls, access, file)));
    }
    return sizes;
}
