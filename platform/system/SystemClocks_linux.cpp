#include "platform/system/SystemClocks.h"

#include "platform/system/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <limits>
#include <linux/magic.h>
#include <string>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

std::int64_t nanoseconds(const timespec &time)
{
    constexpr std::int64_t kSecond = 1'000'000'000;
    return time.tv_sec * kSecond + time.tv_nsec;
}

std::int64_t clockTime(clockid_t clock)
{
    timespec time{};
    ::clock_gettime(clock, &time);
    return nanoseconds(time);
}

/// File systems whose changes the kernel stamps with its own clock.
bool isStampedByKernel(std::uint64_t type)
{
    constexpr std::array<std::uint64_t, 10> kLocal{
        EXT4_SUPER_MAGIC,     BTRFS_SUPER_MAGIC, XFS_SUPER_MAGIC,       TMPFS_MAGIC,
        RAMFS_MAGIC,          F2FS_SUPER_MAGIC,  OVERLAYFS_SUPER_MAGIC, ECRYPTFS_SUPER_MAGIC,
        REISERFS_SUPER_MAGIC,
        0x2fc12fc1, // ZFS, which is not part of the kernel
    };
    return std::find(kLocal.begin(), kLocal.end(), type) != kLocal.end();
}

/// The time stamp of a file that is made now.
SystemResult<std::int64_t> stampOfNewFile(int folder)
{
    constexpr mode_t kOwnerOnly = 0600;
    const std::string name = ".vantor-clock-" + std::to_string(::getpid());
    const FileDescriptor file(::openat(
        folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
    if (!file.isValid())
        return tl::unexpected(errno);
    struct stat found
    {
    };
    const int error = ::fstat(file.get(), &found) == 0 ? 0 : errno;
    ::unlinkat(folder, name.c_str(), 0);
    if (error != 0)
        return tl::unexpected(error);
    return nanoseconds(found.st_ctim);
}

} // namespace

/// The clocks are compared with each other, so they have to be read at one time: not when the
/// thread had to wait in between.
Moment currentMoment()
{
    constexpr std::int64_t kAtOnce = 20'000;
    constexpr int kMostAttempts = 20;
    const std::int64_t stamp = clockTime(CLOCK_REALTIME_COARSE);
    Moment best;
    std::int64_t shortest = std::numeric_limits<std::int64_t>::max();
    for (int i = 0; i < kMostAttempts && shortest > kAtOnce; ++i) {
        const std::int64_t before = clockTime(CLOCK_BOOTTIME);
        const std::int64_t precise = clockTime(CLOCK_REALTIME);
        const std::int64_t duration = clockTime(CLOCK_BOOTTIME) - before;
        if (duration < shortest) {
            shortest = duration;
            best = {stamp, precise, before};
        }
    }
    return best;
}

SystemResult<std::int64_t> clockDifferenceOf(int folder)
{
    struct statfs fileSystem
    {
    };
    if (::fstatfs(folder, &fileSystem) != 0)
        return tl::unexpected(errno);
    if (isStampedByKernel(static_cast<std::uint64_t>(fileSystem.f_type)))
        return 0;
    // The answer may be late, never early: so the difference is never taken for too large.
    return stampOfNewFile(folder).map(
        [](std::int64_t stamp) { return stamp - clockTime(CLOCK_REALTIME); });
}
