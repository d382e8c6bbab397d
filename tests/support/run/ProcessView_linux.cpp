#include "tests/support/run/ProcessView.h"

#include "tests/support/disk/MountNamespace.h"

#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool mountList(const char *options)
{
    return ::mount("proc", "/proc", "proc", 0, options) == 0;
}

bool coverList()
{
    return ::mount("none", "/proc", "tmpfs", 0, nullptr) == 0;
}

/// The list hides nothing from members of the administrator's group.
bool becomeNobody()
{
    return ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
}

/// The namespace begins with the next child of this process.
int runInNamespace(ProcessView view, const std::function<int()> &work)
{
    if (::unshare(CLONE_NEWPID) != 0)
        return kNoSuchView;
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(view == ProcessView::OldList || mountList(nullptr) ? work() : kNoSuchView);
    int status = 0;
    const bool hasEnded = child > 0 && ::waitpid(child, &status, 0) == child;
    return hasEnded && WIFEXITED(status) ? WEXITSTATUS(status) : kNoSuchView;
}

int runSeeing(ProcessView view, const std::function<int()> &work)
{
    if (!enterMountNamespace())
        return kNoSuchView;
    switch (view) {
    case ProcessView::InsideOnly:
    case ProcessView::OldList:
        return runInNamespace(view, work);
    case ProcessView::HiddenList:
        return mountList("hidepid=2") && becomeNobody() ? work() : kNoSuchView;
    case ProcessView::NoList:
        return coverList() ? work() : kNoSuchView;
    }
    return kNoSuchView;
}

} // namespace

ChildOutcome runInChildSeeing(ProcessView view, const std::function<int()> &work)
{
    return runInChild(ChildUser::Same, [&] { return runSeeing(view, work); });
}
