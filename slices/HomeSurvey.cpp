#include "slices/HomeSurvey.h"

#include "platform/SystemHomes.h"
#include "slices/FreedesktopSurvey.h"

HomeEnvironment HomeEnvironment::ofThisProcess()
{
    return {qgetenv("XDG_DATA_HOME"), qgetenv("XDG_CACHE_HOME")};
}

bool hasLibrary(const SystemCalls &calls, const FileAccess &access, const FileUrl &home)
{
    const auto place = access.anchoredPath(home);
    if (homesHaveALibrary() || !place || !place->anchor)
        return true;
    const auto status = calls.status(place->anchor->get(), "Library");
    return status && status->kind == FileKind::Folder;
}

HomeLayout surveyHome(const SystemCalls &calls, const FileAccess &access, const FileUrl &home,
                      const HomeEnvironment &environment)
{
    if (hasLibrary(calls, access, home))
        return HomeLayout::withLibrary(home);
    const HomeReader reader(calls, access.anchoredPath(home)->anchor);
    return HomeLayout::freedesktop(home, FreedesktopSurvey(reader, home, environment).places());
}
