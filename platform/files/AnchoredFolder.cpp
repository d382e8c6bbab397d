#include "platform/files/AnchoredFolder.h"

#include "platform/system/SystemCalls.h"

#include <algorithm>
#include <cerrno>
#include <climits>

namespace {

// The system takes paths of less than PATH_MAX bytes at once.
constexpr qsizetype kLongestPiece = PATH_MAX - 1;

} // namespace

AnchoredEntry anchoredEntry(const AnchoredPath &path)
{
    const qsizetype slash = path.relativePath.lastIndexOf('/');
    return {{path.anchor, path.relativePath.first(std::max<qsizetype>(slash, 0))},
            path.relativePath.sliced(slash + 1)};
}

SystemResult<FileDescriptor> openAnchored(const SystemCalls &calls, const AnchoredPath &path,
                                          Descent descent)
{
    QByteArray rest = path.relativePath.isEmpty() ? "." : path.relativePath;
    if (rest.contains('\0'))
        return tl::unexpected(EINVAL);
    FileDescriptor held;
    int from = path.anchor->get();
    while (rest.size() > kLongestPiece) {
        const qsizetype slash = rest.lastIndexOf('/', kLongestPiece);
        if (slash <= 0)
            return tl::unexpected(ENAMETOOLONG);
        auto opened = calls.openFolder(from, rest.first(slash).constData(), descent);
        if (!opened)
            return opened;
        held = std::move(*opened);
        from = held.get();
        rest.remove(0, slash + 1);
    }
    return calls.openFolder(from, rest.constData(), descent);
}

SystemResult<FileDescriptor> openOnVolume(const SystemCalls &calls, const AnchoredPath &path)
{
    auto folder = openAnchored(calls, path, Descent::Strict);
    if (!folder)
        return folder;
    const auto granted = calls.statusOf(path.anchor->get());
    if (!granted)
        return tl::unexpected(granted.error());
    const auto found = calls.statusOf(folder->get());
    if (!found)
        return tl::unexpected(found.error());
    if (granted->device != found->device)
        return tl::unexpected(EXDEV);
    return folder;
}

SystemResult<FileStatus> statusAnchored(const SystemCalls &calls, const AnchoredPath &path)
{
    const auto [around, name] = anchoredEntry(path);
    const auto folder = openAnchored(calls, around, Descent::Strict);
    if (!folder)
        return tl::unexpected(folder.error());
    return name.isEmpty() ? calls.statusOf(folder->get())
                          : calls.status(folder->get(), name.constData());
}
