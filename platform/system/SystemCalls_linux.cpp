#include "platform/base/Indestructible.h"
#include "platform/system/Attempts.h"
#include "platform/system/DirectoryEntries.h"
#include "platform/system/FilesInUse.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/LocalSocket.h"
#include "platform/system/ProcessList.h"
#include "platform/system/SystemCalls.h"
#include "platform/system/SystemClocks.h"
#include "platform/system/ThreadConfinement.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/capability.h>
#include <linux/openat2.h>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/utsname.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

constexpr int kFolderFlags =
    O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr int kFileFlags = O_NOFOLLOW | O_CLOEXEC | O_NOCTTY;
constexpr mode_t kOwnerOnly = 0600;

tl::unexpected<int> lastError()
{
    return tl::unexpected(errno);
}

/// A call that answers 0 for success.
SystemResult<void> checked(int answer)
{
    if (answer != 0)
        return lastError();
    return {};
}

SystemResult<std::size_t> counted(ssize_t answer)
{
    if (answer < 0)
        return lastError();
    return static_cast<std::size_t>(answer);
}

SystemResult<FileDescriptor> opened(long answer)
{
    if (answer < 0)
        return lastError();
    return FileDescriptor(static_cast<int>(answer));
}

SystemResult<FileDescriptor> openResolved(int parent, const char *path, std::uint64_t resolve)
{
    open_how how{};
    how.flags = kFolderFlags;
    how.resolve = resolve;
    // EAGAIN: a rename somewhere on the disk raced with the descent.
    return attempted([&] { return opened(::syscall(SYS_openat2, parent, path, &how, sizeof how)); },
                     {EAGAIN, EINTR});
}

FileKind kindOfMode(unsigned mode)
{
    switch (mode & S_IFMT) {
    case S_IFREG:
        return FileKind::Regular;
    case S_IFDIR:
        return FileKind::Folder;
    case S_IFLNK:
        return FileKind::Link;
    default:
        return FileKind::Other;
    }
}

FileKind kindOfEntry(unsigned char type)
{
    switch (type) {
    case DT_UNKNOWN:
        return FileKind::Unknown;
    case DT_REG:
        return FileKind::Regular;
    case DT_DIR:
        return FileKind::Folder;
    case DT_LNK:
        return FileKind::Link;
    default:
        return FileKind::Other;
    }
}

template <typename Time> std::int64_t nanoseconds(const Time &time)
{
    constexpr std::int64_t kSecond = 1'000'000'000;
    return time.tv_sec * kSecond + time.tv_nsec;
}

FileStatus statusFrom(const struct statx &found)
{
    constexpr unsigned kPermissionBits = 07777;
    constexpr unsigned kNoNumberHere = 65534;
    FileStatus status;
    status.kind = kindOfMode(found.stx_mode);
    status.permissions = static_cast<std::uint16_t>(found.stx_mode & kPermissionBits);
    status.owner = found.stx_uid;
    status.size = found.stx_size;
    status.inode = found.stx_ino;
    status.device = makedev(found.stx_dev_major, found.stx_dev_minor);
    status.links = found.stx_nlink;
    status.contentChanged = nanoseconds(found.stx_mtime);
    status.changed = nanoseconds(found.stx_ctime);
    status.isImmutable = (found.stx_attributes & STATX_ATTR_IMMUTABLE) != 0;
    status.isAppendOnly = (found.stx_attributes & STATX_ATTR_APPEND) != 0;
    status.isMountRoot = (found.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    status.tellsAll = (found.stx_attributes_mask & STATX_ATTR_IMMUTABLE) != 0 &&
                      found.stx_uid != kNoNumberHere && found.stx_gid != kNoNumberHere;
    return status;
}

/// Mounts nothing that is mounted on demand. Never answers from what is known to be old: where a
/// server or another process keeps the files, a time from before the last write would let a file
/// go that has just been saved.
SystemResult<struct statx> statxAt(int parent, const char *name, int flags, unsigned mask)
{
    struct statx found
    {
    };
    if (::statx(parent, name, flags | AT_NO_AUTOMOUNT, mask, &found) != 0)
        return lastError();
    return found;
}

FileKind kindFrom(const struct statx &found)
{
    return kindOfMode(found.stx_mode);
}

constexpr unsigned kStatusMask = STATX_TYPE | STATX_MODE | STATX_UID | STATX_GID | STATX_SIZE |
                                 STATX_INO | STATX_NLINK | STATX_MTIME | STATX_CTIME;

/// Some file systems give no handles; there only inode and birth time distinguish entries.
QByteArray handleAt(int parent, const char *name, int flags)
{
    alignas(file_handle) std::array<char, sizeof(file_handle) + MAX_HANDLE_SZ> space{};
    auto *handle = reinterpret_cast<file_handle *>(space.data());
    handle->handle_bytes = MAX_HANDLE_SZ;
    int mount = 0;
    if (::name_to_handle_at(parent, name, handle, &mount, flags) != 0)
        return {};
    const QByteArray type = QByteArray::number(handle->handle_type) + ':';
    return type +
           QByteArray(reinterpret_cast<const char *>(handle->f_handle), handle->handle_bytes);
}

SystemResult<FileIdentity> identityAt(int parent, const char *name, int flags)
{
    const auto found = statxAt(parent, name, flags | AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME);
    if (!found)
        return tl::unexpected(found.error());
    struct statfs fileSystem
    {
    };
    if (::fstatfs(parent, &fileSystem) != 0)
        return lastError();

    FileIdentity identity;
    identity.handle = handleAt(parent, name, flags);
    static_assert(sizeof fileSystem.f_fsid == sizeof identity.fileSystem);
    std::memcpy(&identity.fileSystem, &fileSystem.f_fsid, sizeof identity.fileSystem);
    identity.device = makedev(found->stx_dev_major, found->stx_dev_minor);
    identity.inode = found->stx_ino;
    if ((found->stx_mask & STATX_BTIME) != 0) {
        identity.birthSeconds = found->stx_btime.tv_sec;
        identity.birthNanoseconds = found->stx_btime.tv_nsec;
    }
    return identity;
}

/// Whether this thread may act as the owner of files that it does not own.
bool holdsOwnersCapability()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
    if (::syscall(SYS_capget, &header, sets.data()) != 0)
        return false;
    return (sets[CAP_TO_INDEX(CAP_FOWNER)].effective & CAP_TO_MASK(CAP_FOWNER)) != 0;
}

class HostSystemCalls final : public SystemCalls
{
public:
    SystemResult<FileDescriptor> openFolder(int parent, const char *relativePath,
                                            Descent descent) const override
    {
        constexpr std::uint64_t kBeneath =
            RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
        return openResolved(parent, relativePath,
                            descent == Descent::Strict ? kBeneath | RESOLVE_NO_XDEV : kBeneath);
    }

    SystemResult<FileDescriptor> openParent(int folder) const override
    {
        return openResolved(folder, "..",
                            RESOLVE_NO_XDEV | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS);
    }

    SystemResult<FileDescriptor> openRoot(const char *path) const override
    {
        return openResolved(AT_FDCWD, path, RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS);
    }

    SystemResult<QByteArray> realPath(const char *path) const override
    {
        const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path, nullptr),
                                                               &std::free);
        return real ? SystemResult<QByteArray>(real.get()) : lastError();
    }

    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override
    {
        return counted(::syscall(SYS_getdents64, folder, buffer.data(), buffer.size()));
    }

    SystemResult<FileStatus> status(int parent, const char *name) const override
    {
        return statxAt(parent, name, AT_SYMLINK_NOFOLLOW, kStatusMask).map(statusFrom);
    }

    SystemResult<FileStatus> statusOf(int descriptor) const override
    {
        return statxAt(descriptor, "", AT_EMPTY_PATH, kStatusMask).map(statusFrom);
    }

    SystemResult<FileKind> kindBehind(int parent, const char *name) const override
    {
        return statxAt(parent, name, 0, STATX_TYPE).map(kindFrom);
    }

    SystemResult<FileIdentity> identityOf(int descriptor) const override
    {
        return identityAt(descriptor, "", AT_EMPTY_PATH);
    }

    SystemResult<FileIdentity> identity(int parent, const char *name) const override
    {
        return identityAt(parent, name, 0);
    }

    bool mayChangeEntries(int folder) const override
    {
        return ::faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) == 0;
    }

    FileSystemTraits fileSystemTraits(int folder) const override { return traitsOf(folder); }

    ActingUser actingUser() const override { return {::geteuid(), holdsOwnersCapability()}; }

    SystemResult<FileDescriptor> openEntry(int parent, const char *name) const override
    {
        return opened(::openat(parent, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
    }

    SystemResult<void> removeFile(int parent, const char *name) const override
    {
        return checked(::unlinkat(parent, name, 0));
    }

    SystemResult<void> removeFolder(int parent, const char *name) const override
    {
        return checked(::unlinkat(parent, name, AT_REMOVEDIR));
    }

    SystemResult<void> setPermissions(int descriptor, std::uint16_t permissions) const override
    {
        return checked(::fchmod(descriptor, permissions));
    }

    SystemResult<QByteArray> readLink(int parent, const char *name) const override
    {
        QByteArray text(PATH_MAX, Qt::Uninitialized);
        const ssize_t size = ::readlinkat(parent, name, text.data(), text.size());
        if (size < 0)
            return lastError();
        text.truncate(size);
        return text;
    }

    SystemResult<bool> isLocked(int file) const override
    {
        struct flock wanted
        {
        };
        wanted.l_type = F_WRLCK;
        wanted.l_whence = SEEK_SET;
        if (::fcntl(file, F_GETLK, &wanted) != 0)
            return lastError();
        return wanted.l_type != F_UNLCK;
    }

    bool isRunning(std::int64_t process) const override { return isProcessRunning(process); }
    bool seesAllProcesses() const override { return isProcessListWhole(); }

    SystemResult<QByteArrayList> programNames() const override
    {
        return programNamesOf(::geteuid());
    }

    SystemResult<QByteArrayList> filesInUse(int folder) const override
    {
        return ::filesInUse(folder);
    }

    bool isListening(const char *socket) const override { return isSocketServed(socket); }

    QByteArray hostName() const override
    {
        utsname system{};
        return ::uname(&system) == 0 ? QByteArray(system.nodename) : QByteArray();
    }

    SystemResult<FileDescriptor> openFile(int parent, const char *name) const override
    {
        return opened(::openat(parent, name, kFileFlags | O_RDONLY | O_NONBLOCK));
    }

    SystemResult<FileDescriptor> createFile(int parent, const char *name) const override
    {
        return opened(
            ::openat(parent, name, kFileFlags | O_WRONLY | O_CREAT | O_TRUNC, kOwnerOnly));
    }

    SystemResult<std::size_t> read(int file, std::span<char> buffer) const override
    {
        return counted(::read(file, buffer.data(), buffer.size()));
    }

    SystemResult<std::size_t> write(int file, std::span<const char> bytes) const override
    {
        return counted(::write(file, bytes.data(), bytes.size()));
    }

    SystemResult<std::size_t> writeAt(int file, std::span<const char> bytes,
                                      std::int64_t offset) const override
    {
        return counted(::pwrite(file, bytes.data(), bytes.size(), offset));
    }

    SystemResult<void> sync(int descriptor) const override { return checked(::fsync(descriptor)); }

    SystemResult<void> rename(int parent, const char *from, const char *to) const override
    {
        return checked(::renameat(parent, from, parent, to));
    }

    SystemResult<void> moveToFree(int parent, const char *from, const char *to) const override
    {
        return checked(::renameat2(parent, from, parent, to, RENAME_NOREPLACE));
    }

    Moment now() const override { return currentMoment(); }

    SystemResult<std::int64_t> clockDifference(int folder) const override
    {
        return clockDifferenceOf(folder);
    }

    const ThreadConfinement &confinement() const override { return hostConfinement(); }
};

} // namespace

const SystemCalls &hostSystemCalls()
{
    static const Indestructible<HostSystemCalls> calls;
    return *calls;
}

bool DirectoryEntries::next(DirectoryEntry &entry)
{
    while (!m_rest.empty()) {
        const auto *raw = reinterpret_cast<const dirent64 *>(m_rest.data());
        m_rest = m_rest.subspan(raw->d_reclen);
        if (std::strcmp(raw->d_name, ".") == 0 || std::strcmp(raw->d_name, "..") == 0)
            continue;
        entry = {raw->d_name, raw->d_ino, kindOfEntry(raw->d_type)};
        return true;
    }
    return false;
}
