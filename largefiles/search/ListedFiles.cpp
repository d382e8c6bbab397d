#include "largefiles/search/ListedFiles.h"

#include "platform/base/ByteCount.h"
#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "slices/sizing/FolderSizing.h"

#include <cerrno>

namespace {

/// A file's name in the open folder around it.
struct OpenEntry
{
    FileDescriptor folder;
    QByteArray name;
};

SystemResult<OpenEntry> openAround(const SystemCalls &calls,
                                   const std::optional<AnchoredPath> &place)
{
    if (!place)
        return tl::unexpected(EACCES);
    const AnchoredEntry entry = anchoredEntry(*place);
    auto folder = openOnVolume(calls, entry.folder);
    if (!folder)
        return tl::unexpected(folder.error());
    return OpenEntry{std::move(*folder), entry.name};
}

SystemResult<FileStatus> statusOf(const SystemCalls &calls,
                                  const std::optional<AnchoredPath> &place)
{
    const auto entry = openAround(calls, place);
    if (!entry)
        return tl::unexpected(entry.error());
    return calls.status(entry->folder.get(), entry->name.constData());
}

bool hasVanished(const SystemResult<FileStatus> &status)
{
    if (status)
        return status->kind != FileKind::Regular;
    return status.error() == ENOENT || status.error() == ENOTDIR || status.error() == ELOOP;
}

CurrentSize sizeAt(const SystemCalls &calls, const std::optional<AnchoredPath> &place)
{
    const auto entry = openAround(calls, place);
    if (!entry)
        return {};
    const int folder = entry->folder.get();
    const char *const name = entry->name.constData();
    const auto status = calls.status(folder, name);
    if (!status || status->kind != FileKind::Regular)
        return {};
    return {byteCountOf(status->size), mayBeDeleted(calls, *place),
            calls.identity(folder, name).value_or(FileIdentity())};
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
        if (hasVanished(statusOf(calls, access.anchoredPath(file))))
            vanished.append(file);
    }
    return vanished;
}

QList<CurrentSize> currentSizes(const SystemCalls &calls, FileAccess &access, const FileUrls &files,
                                const std::stop_token &stop)
{
    const AccessScope scope(access);
    QList<CurrentSize> sizes;
    for (const FileUrl &file : files) {
        if (stop.stop_requested())
            return sizes;
        sizes.append(sizeAt(calls, access.anchoredPath(file)));
    }
    return sizes;
}
