#include "tests/soak/attack/TrustingDeleter.h"

#include <QByteArrayList>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Takes the descriptor.
QByteArrayList namesIn(int folder)
{
    QByteArrayList names;
    DIR *const opened = folder < 0 ? nullptr : ::fdopendir(folder);
    while (const dirent *entry = opened ? ::readdir(opened) : nullptr) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            names.append(entry->d_name);
    }
    if (opened)
        ::closedir(opened);
    return names;
}

std::int64_t timeOf(const struct stat &status)
{
    return status.st_ctim.tv_sec * 1'000'000'000 + status.st_ctim.tv_nsec;
}

} // namespace

void TrustingDeleter::empty(const QByteArray &folder)
{
    if (m_way == Way::ByPath)
        return emptyByPath(folder);
    const int opened = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (opened >= 0)
        emptyByDescriptor(opened, folder);
    ::close(opened);
}

void TrustingDeleter::emptyByPath(const QByteArray &folder)
{
    for (const QByteArray &name : namesIn(::open(folder.constData(), O_RDONLY | O_CLOEXEC))) {
        const QByteArray path = folder + '/' + name;
        struct stat status
        {
        };
        if (path == m_excluded || ::lstat(path.constData(), &status) != 0)
            continue;
        if (S_ISDIR(status.st_mode)) {
            emptyByPath(path);
            note(::rmdir(path.constData()));
        } else if (timeOf(status) < m_confirmed) {
            note(::unlink(path.constData()));
        }
    }
}

void TrustingDeleter::emptyByDescriptor(int folder, const QByteArray &path)
{
    for (const QByteArray &name : namesIn(::openat(folder, ".", O_RDONLY | O_CLOEXEC))) {
        struct stat status
        {
        };
        if (path + '/' + name == m_excluded ||
            ::fstatat(folder, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (S_ISDIR(status.st_mode)) {
            const int inside =
                ::openat(folder, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            if (inside >= 0)
                emptyByDescriptor(inside, path + '/' + name);
            ::close(inside);
            note(::unlinkat(folder, name.constData(), AT_REMOVEDIR));
        } else if (timeOf(status) < m_confirmed) {
            note(::unlinkat(folder, name.constData(), 0));
        }
    }
}
