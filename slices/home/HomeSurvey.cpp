#include "slices/home/HomeSurvey.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "platform/system/SystemHomes.h"
#include "slices/home/FreedesktopSurvey.h"

#include <cerrno>

namespace {

constexpr auto kLibrary = "Library";
/// Nearly every Library has it.
constexpr auto kCaches = "Library/Caches";

bool isAllThereIs(const std::optional<AnchoredPath> &home)
{
    return homesHaveALibrary() || !home || !home->anchor;
}

bool isFolder(const SystemResult<FileStatus> &status)
{
    return status && status->kind == FileKind::Folder;
}

/// Whether nothing is at a path that could be cleaned. Anything else may be a disk that does not
/// answer.
bool isMissing(int error)
{
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == EXDEV ||
           error == EACCES;
}

/// Whether one of the slice's locations is there, in the Library of the home.
SystemResult<bool> isInLibrary(const SystemCalls &calls, const AnchoredPath &home,
                               const SliceDescription &slice)
{
    const FileKind wanted =
        slice.content == SliceContent::Folders ? FileKind::Folder : FileKind::Regular;
    for (const QByteArray path : slice.fixedPaths) {
        if (!path.startsWith(QByteArray(kLibrary) + '/'))
            continue;
        const auto status = statusAnchored(calls, {home.anchor, path});
        if (!status && !isMissing(status.error()))
            return tl::unexpected(status.error());
        if (status && status->kind == wanted)
            return true;
    }
    return false;
}

HomeKind kindOf(const SystemCalls &calls, const std::optional<AnchoredPath> &home)
{
    if (isAllThereIs(home))
        return HomeKind::Library;
    const auto library = calls.status(home->anchor->get(), kLibrary);
    if (!library && library.error() != ENOENT)
        return HomeKind::Unknown;
    if (!isFolder(library))
        return HomeKind::Freedesktop;
    for (const SliceDescription &slice : sliceCatalogue()) {
        const auto isThere = isInLibrary(calls, *home, slice);
        if (!isThere)
            return HomeKind::Unknown;
        if (*isThere)
            return HomeKind::Library;
    }
    return HomeKind::Freedesktop;
}

} // namespace

bool hasPlainLibrary(const SystemCalls &calls, const FileAccess &access, const FileUrl &home)
{
    const std::optional<AnchoredPath> place = access.anchoredPath(home);
    return isAllThereIs(place) || (isFolder(calls.status(place->anchor->get(), kLibrary)) &&
                                   isFolder(calls.status(place->anchor->get(), kCaches)));
}

/// Asks the access only once: the next time it may be gone, or may lead elsewhere.
HomeLayout surveyHome(const SystemCalls &calls, const FileAccess &access, const FileUrl &home,
                      const HomeEnvironment &environment, const std::stop_token &stop)
{
    const std::optional<AnchoredPath> place = access.anchoredPath(home);
    const HomeKind kind = kindOf(calls, place);
    if (kind == HomeKind::Unknown)
        return {};
    if (kind == HomeKind::Library)
        return HomeLayout::withLibrary(home);
    const HomeProbe reader(calls, place->anchor, stop);
    const HomePaths paths(reader, HomePaths::leadingTo(calls, home.path(), environment.home));
    HomeLayout::Findings findings = FreedesktopSurvey(reader, paths, home, environment).findings();
    return stop.stop_requested() ? HomeLayout()
                                 : HomeLayout::freedesktop(home, std::move(findings));
}
