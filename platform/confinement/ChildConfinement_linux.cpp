#include "platform/confinement/ChildConfinement.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int kFirstAfterStreams = 3;
constexpr int kCannotConfine = 126;

void limit(__rlimit_resource resource, rlim_t value)
{
    const rlimit both{value, value};
    ::setrlimit(resource, &both); // refused only where a stricter limit is in force
}

void keepWithin(const ProcessLimits &limits)
{
    if (limits.memory)
        limit(RLIMIT_AS, *limits.memory);
    if (limits.processorTime)
        limit(RLIMIT_CPU, rlim_t(limits.processorTime->count()));
    limit(RLIMIT_FSIZE, limits.fileSize);
    limit(RLIMIT_CORE, 0);
}

/// Has all descriptors but the standard streams closed when the program starts. Until then QProcess
/// needs its own.
bool closeOthersAtStart()
{
    if (::syscall(SYS_close_range, kFirstAfterStreams, ~0U, CLOSE_RANGE_CLOEXEC) == 0)
        return true;
    rlimit open{}; // a system that is too old
    if (::getrlimit(RLIMIT_NOFILE, &open) != 0 || open.rlim_cur == RLIM_INFINITY)
        return false;
    for (int descriptor = kFirstAfterStreams; rlim_t(descriptor) < open.rlim_cur; ++descriptor)
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    return true;
}

/// Runs in the child, between fork and exec, so it makes nothing but calls of the system.
void confineItself(const ProcessLimits &limits, int input, int kept)
{
    ::setpgid(0, 0); // so that it can be killed with what it starts
    keepWithin(limits);
    const bool isConfined = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && closeOthersAtStart() &&
                            (input < 0 || ::dup2(input, STDIN_FILENO) >= 0) &&
                            (kept < 0 || ::fcntl(kept, F_SETFD, 0) == 0);
    if (!isConfined)
        ::_exit(kCannotConfine);
}

QProcessEnvironment sparseEnvironment(const QStringList &variables)
{
    const QProcessEnvironment ours = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment theirs;
    theirs.insert(QStringLiteral("PATH"), QStringLiteral("/usr/local/bin:/usr/bin:/bin"));
    for (const QString &name :
         QStringList{QStringLiteral("LANG"), QStringLiteral("LC_ALL"), QStringLiteral("LC_CTYPE"),
                     QStringLiteral("LANGUAGE"), QStringLiteral("TZ")} +
             variables) {
        if (ours.contains(name))
            theirs.insert(name, ours.value(name));
    }
    return theirs;
}

} // namespace

void confineChild(QProcess &process, const ChildConfinement &confinement)
{
    process.setProcessEnvironment(sparseEnvironment(confinement.variables));
    process.setChildProcessModifier(
        [limits = confinement.limits, input = confinement.input, kept = confinement.kept] {
            confineItself(limits, input, kept);
        });
}
