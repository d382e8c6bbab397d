#include "platform/system/ProcessList.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <limits>
#include <linux/magic.h>
#include <string>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace {

namespace fs = std::filesystem;

bool isProcessFolder(const fs::path &path)
{
    return path.filename().native().find_first_not_of("0123456789") == std::string::npos;
}

/// The kernel gives this number to the one process namespace that it starts with.
constexpr ino_t kOutermostNamespace = 0xEFFFFFFC;

bool isInOutermostNamespace()
{
    struct stat found
    {
    };
    return ::stat("/proc/self/ns/pid", &found) == 0 && found.st_ino == kOutermostNamespace;
}

bool belongsTo(uid_t user, const fs::path &path)
{
    struct stat found
    {
    };
    return ::stat(path.c_str(), &found) == 0 && found.st_uid == user;
}

QByteArray nameOf(const fs::path &process)
{
    std::string name;
    std::ifstream comm(process / "comm");
    std::getline(comm, name);
    return QByteArray::fromStdString(name);
}

/// Empty where it cannot be read, for example for another user's process.
QByteArray fileNameOf(const fs::path &process)
{
    constexpr QByteArrayView kGone(" (deleted)");
    std::error_code ignored;
    auto path = QByteArray::fromStdString(fs::read_symlink(process / "exe", ignored).native());
    if (path.endsWith(kGone))
        path.chop(kGone.size());
    return path.sliced(path.lastIndexOf('/') + 1);
}

} // namespace

bool isProcessRunning(std::int64_t process)
{
    if (process <= 0 || process > std::numeric_limits<pid_t>::max())
        return false;
    return ::kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM;
}

/// The first process belongs to another user, and anybody may read its name unless the list hides
/// what is not one's own.
bool isProcessListWhole()
{
    struct statfs list
    {
    };
    return ::statfs("/proc", &list) == 0 && list.f_type == PROC_SUPER_MAGIC &&
           isInOutermostNamespace() && !nameOf("/proc/1").isEmpty();
}

tl::expected<QByteArrayList, int> programNamesOf(uid_t user)
{
    QByteArrayList names;
    std::error_code error;
    bool hasSeenAny = false;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        if (!isProcessFolder(entry->path()))
            continue;
        hasSeenAny = true;
        if (belongsTo(user, entry->path()))
            names << nameOf(entry->path()) << fileNameOf(entry->path());
    }
    if (error || !hasSeenAny)
        return tl::unexpected(error ? error.value() : ENOENT);
    return names;
}
