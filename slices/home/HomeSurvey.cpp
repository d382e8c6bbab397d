#include "slices/home/HomeSurvey.h"

#include "platform/system/SystemCalls.h"
#include "platform/system/SystemHomes.h"
#include "slices/home/FreedesktopSurvey.h"

#include <cerrno>

namespace {

HomeKind kindOf(const SystemCalls &calls, const std::optional<AnchoredPath> &home)
{
    if (homesHaveALibrary() || !home || !home->anchor)
        return HomeKind::Library;
    const auto status = calls.status(home->anchor->get(), "Library");
    if (!status)
        return status.error() == ENOENT ? HomeKind::Freedesktop : HomeKind::Unknown;
    return status->kind == FileKind::Folder ? HomeKind::Library : HomeKind::Freedesktop;
}

} // namespace

HomeKind homeKind(const SystemCalls &calls, const FileAccess &access, const FileUrl &home)
{
    return kindOf(calls, access.anchoredPath(home));
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
