#include "platform/confinement/ProcessConfinement.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// vantor-enter <descriptor> <path> <program> [arguments]: becomes the program, in a sandbox that
// shows it one file under a path. Whoever made the sandbox could only name that file, so it may be
// another one by now: it has to be the one that is open as the descriptor, which is then closed.
// The program gets the standard streams alone, and is confined. Exits with kExitUnconfined when
// that cannot be done, and with 1 when it is another file or there is no such program. Without
// arguments it exits with 0: it can be started in the sandbox.

namespace {

constexpr int kLeastArguments = 4;
constexpr int kFirstAfterStreams = 3;
constexpr int kNothingToRun = 1;

bool isSameFile(int descriptor, const char *path)
{
    struct stat open = {};
    struct stat shown = {};
    return ::fstat(descriptor, &open) == 0 && ::lstat(path, &shown) == 0 && S_ISREG(open.st_mode) &&
           open.st_dev == shown.st_dev && open.st_ino == shown.st_ino;
}

} // namespace

int main(int count, char **arguments)
{
    if (count < kLeastArguments)
        return count == 1 ? 0 : kNothingToRun;
    if (!isSameFile(std::atoi(arguments[1]), arguments[2]))
        return kNothingToRun;
    if (::syscall(SYS_close_range, kFirstAfterStreams, ~0U, 0) != 0 ||
        !confineThisProcess(Confinement::Guest))
        return kExitUnconfined;
    ::execvp(arguments[3], arguments + 3);
    return kNothingToRun;
}
