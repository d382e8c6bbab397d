#include "tests/support/ChildProcess.h"

#include <QFile>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr uid_t kNobody = 65534;

bool becomeOrdinaryUser()
{
    if (::geteuid() != 0)
        return true;
    return ::setgroups(0, nullptr) == 0 && ::setresgid(kNobody, kNobody, kNobody) == 0 &&
           ::setresuid(kNobody, kNobody, kNobody) == 0;
}

/// Whoever is not root becomes the root of a user namespace first.
bool mountTinyDisk(const QByteArray &folder, int bytes)
{
    const int user = ::geteuid() == 0 ? 0 : CLONE_NEWUSER;
    const QByteArray size = "size=" + QByteArray::number(bytes);
    return ::unshare(CLONE_NEWNS | user) == 0 &&
           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("tiny", folder, "tmpfs", 0, size) == 0;
}

} // namespace

int runInChild(const std::function<int()> &piece)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(piece());
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return kCrashed;
    return WEXITSTATUS(status);
}

int runAsOrdinaryUser(const std::function<int()> &piece)
{
    return runInChild([&] { return becomeOrdinaryUser() ? piece() : kNoOrdinaryUser; });
}

int runWithTinyDisk(const QString &folder, int bytes, const std::function<int()> &piece)
{
    return runInChild(
        [&] { return mountTinyDisk(QFile::encodeName(folder), bytes) ? piece() : kNoDisk; });
}
