#include "platform/system/FilesInUse.h"

#include "platform/system/FileDescriptor.h"
#include "platform/system/FolderNames.h"

#include <QHash>
#include <array>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr QByteArrayView kDeleted(" (deleted)");

/// Processes end at any time, and those of others may not be looked into.
bool isOrdinary(int error)
{
    return error == ENOENT || error == ESRCH || error == EACCES || error == EPERM;
}

FileDescriptor opened(int parent, const char *path, int flags)
{
    const int file = ::openat(parent, path, flags | O_CLOEXEC);
    return file < 0 ? FileDescriptor() : FileDescriptor(file);
}

struct CloseFolder
{
    void operator()(DIR *folder) const { ::closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

/// Null, with errno, where it cannot be opened.
OpenFolder openedFolder(int parent, const char *path)
{
    const int folder = ::openat(parent, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return OpenFolder(folder < 0 ? nullptr : ::fdopendir(folder));
}

/// Empty where it cannot be read.
QByteArray contentOf(int parent, const char *path)
{
    constexpr qsizetype kStep = 65536;
    const FileDescriptor file = opened(parent, path, O_RDONLY);
    QByteArray text;
    for (ssize_t size = file.isValid() ? 1 : 0; size > 0;) {
        const qsizetype before = text.size();
        text.resize(before + kStep);
        size = ::read(file.get(), text.data() + before, kStep);
        text.truncate(before + std::max<ssize_t>(size, 0));
    }
    return text;
}

/// Looks at all processes once, for one folder.
class Look final
{
public:
    explicit Look(FileDescriptor processes) : m_processes(std::move(processes)) {}

    /// Finds out how the folder is called. False where the system does not tell.
    bool aimAt(int folder);
    /// The errno that ended the look; 0 for none.
    int lookAtAll();
    QByteArrayList found() const { return {m_found.begin(), m_found.end()}; }

private:
    int lookAt(const char *process);
    void learnNames(const QByteArray &mountSpace, int process);
    int lookAtOpenFiles(int process);
    void lookAtLink(int folder, const char *name);
    void lookAtMaps(int process);
    void takeMapped(QByteArrayView path);
    void lookAtSockets();
    void take(QByteArrayView path);
    QByteArrayView target(int folder, const char *name);

    FileDescriptor m_processes;
    QByteArray m_ownSpace;
    std::optional<FolderPlace> m_place;
    FolderNames m_ownNames;
    /// Of the folder in each mount namespace, besides those in our own.
    QHash<QByteArray, FolderNames> m_namesIn;
    const FolderNames *m_names = nullptr; ///< for the process that is looked at
    std::array<char, PATH_MAX> m_space{};
    std::set<QByteArray> m_found;
};

/// Valid until the next call; empty where there is no link.
QByteArrayView Look::target(int folder, const char *name)
{
    const ssize_t size = ::readlinkat(folder, name, m_space.data(), m_space.size());
    return {m_space.data(), std::max<ssize_t>(size, 0)};
}

bool Look::aimAt(int folder)
{
    const QByteArray number = QByteArray::number(folder);
    const QByteArray path =
        target(m_processes.get(), ("self/fd/" + number).constData()).toByteArray();
    if (!path.startsWith('/'))
        return false;
    m_ownSpace = target(m_processes.get(), "self/ns/mnt").toByteArray();
    m_ownNames.add(path);
    const QByteArray mounts = contentOf(m_processes.get(), "self/mountinfo");
    const QByteArray facts = contentOf(m_processes.get(), ("self/fdinfo/" + number).constData());
    constexpr QByteArrayView kMount("mnt_id:");
    for (const QByteArray &line : facts.split('\n')) {
        if (line.startsWith(kMount))
            m_place = FolderPlace::of(mounts, line.sliced(kMount.size()).trimmed(), path);
    }
    if (m_place)
        m_ownNames.add(mounts, *m_place);
    return true;
}

int Look::lookAtAll()
{
    const QByteArray self = target(m_processes.get(), "self").toByteArray();
    const OpenFolder list = openedFolder(m_processes.get(), ".");
    if (!list)
        return errno;
    while (const dirent *entry = ::readdir(list.get())) {
        const char first = entry->d_name[0];
        if (first < '0' || first > '9' || self == entry->d_name)
            continue;
        if (const int error = lookAt(entry->d_name); error != 0)
            return error;
    }
    lookAtSockets();
    return 0;
}

int Look::lookAt(const char *process)
{
    const FileDescriptor folder = opened(m_processes.get(), process, O_PATH | O_DIRECTORY);
    if (!folder.isValid())
        return isOrdinary(errno) ? 0 : errno;
    const QByteArray mountSpace = target(folder.get(), "ns/mnt").toByteArray();
    if (mountSpace.isEmpty())
        return isOrdinary(errno) ? 0 : errno;
    learnNames(mountSpace, folder.get());
    for (const char *link : {"cwd", "root", "exe"})
        lookAtLink(folder.get(), link);
    lookAtMaps(folder.get());
    return lookAtOpenFiles(folder.get());
}

/// What a process was handed by one outside of its own mounts has the name that it has there.
void Look::learnNames(const QByteArray &mountSpace, int process)
{
    if (mountSpace == m_ownSpace || !m_place) {
        m_names = &m_ownNames;
        return;
    }
    auto known = m_namesIn.find(mountSpace);
    if (known == m_namesIn.end()) {
        known = m_namesIn.insert(mountSpace, m_ownNames);
        known->add(contentOf(process, "mountinfo"), *m_place);
    }
    m_names = &*known;
}

int Look::lookAtOpenFiles(int process)
{
    const OpenFolder list = openedFolder(process, "fd");
    if (!list)
        return isOrdinary(errno) ? 0 : errno;
    while (const dirent *entry = ::readdir(list.get()))
        lookAtLink(::dirfd(list.get()), entry->d_name);
    return 0;
}

/// The link of a file that was deleted says so at its end, but a name may end like that too.
void Look::lookAtLink(int folder, const char *name)
{
    const QByteArrayView path = target(folder, name);
    if (!path.startsWith('/') || m_names->pathInside(path).isEmpty())
        return;
    struct stat status
    {
    };
    const bool isGone = path.endsWith(kDeleted) &&
                        (::fstatat(folder, name, &status, 0) != 0 || status.st_nlink == 0);
    if (!isGone)
        take(path);
}

/// One file is usually mapped in several pieces, line after line.
void Look::lookAtMaps(int process)
{
    const QByteArray text = contentOf(process, "maps");
    QByteArrayView before;
    for (QByteArrayView rest = text; !rest.isEmpty();) {
        const qsizetype end = rest.indexOf('\n');
        const QByteArrayView line = rest.first(end < 0 ? rest.size() : end);
        rest = rest.sliced(std::min(line.size() + 1, rest.size()));
        const qsizetype slash = line.indexOf('/');
        const QByteArrayView path = slash < 0 ? QByteArrayView() : line.sliced(slash);
        if (!path.isEmpty() && path != before && !path.endsWith(kDeleted))
            takeMapped(path);
        before = path;
    }
}

/// A line end in a name is written as digits, a backslash as itself.
void Look::takeMapped(QByteArrayView path)
{
    constexpr QByteArrayView kLineEnd("\\012");
    take(path);
    if (path.contains(kLineEnd))
        take(path.toByteArray().replace(kLineEnd, "\n"));
}

/// The path at which a program takes connections is not among its open files.
void Look::lookAtSockets()
{
    m_names = &m_ownNames;
    for (const QByteArray &line : contentOf(m_processes.get(), "self/net/unix").split('\n')) {
        const qsizetype slash = line.indexOf('/');
        if (slash >= 0)
            take(QByteArrayView(line).sliced(slash));
    }
}

void Look::take(QByteArrayView path)
{
    const QByteArray inside = m_names->pathInside(path);
    if (!inside.isEmpty())
        m_found.insert(inside);
}

} // namespace

tl::expected<QByteArrayList, int> filesInUse(int folder)
{
    FileDescriptor processes = opened(AT_FDCWD, "/proc", O_RDONLY | O_DIRECTORY);
    if (!processes.isValid())
        return tl::unexpected(errno);
    Look look(std::move(processes));
    if (!look.aimAt(folder))
        return tl::unexpected(ENOENT);
    if (const int error = look.lookAtAll(); error != 0)
        return tl::unexpected(error);
    return look.found();
}
