#include "platform/system/FileSystemTraits.h"

#include "platform/system/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <linux/magic.h>
#include <optional>
#include <span>
#include <string_view>
#include <sys/statvfs.h>
#include <sys/vfs.h>
#include <thread>
#include <unistd.h>

namespace {

/// Of these it is known how they list a folder, and that they leave the question of rights to the
/// kernel's own rules.
constexpr std::array<std::uint32_t, 5> kKnownFileSystems{
    EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC, TMPFS_MAGIC};

std::optional<struct statfs> fileSystemOf(int folder)
{
    struct statfs found
    {
    };
    return ::fstatfs(folder, &found) == 0 ? std::optional(found) : std::nullopt;
}

std::uint32_t typeOf(const struct statfs &fileSystem)
{
    return static_cast<std::uint32_t>(fileSystem.f_type); // signed, and of any width
}

/// How a module of the kernel names this process; empty where none does, or where it names none.
/// Nothing when that cannot be told.
std::optional<std::string_view> nameOfThisProcess(const char *path, std::span<char> space)
{
    const FileDescriptor file(::open(path, O_RDONLY | O_CLOEXEC));
    if (!file.isValid())
        return errno == ENOENT && ::access("/proc/self/stat", F_OK) == 0
                   ? std::optional(std::string_view())
                   : std::nullopt;
    const ssize_t size = ::read(file.get(), space.data(), space.size());
    if (size < 0)
        return errno == EINVAL ? std::optional(std::string_view()) : std::nullopt;
    return std::string_view(space.data(), static_cast<std::size_t>(size));
}

/// Whether the kernel also asks the labels of files. A module that labels files labels processes
/// too: one writes labels of several parts, the other has a file of its own for them. Modules that
/// go by paths are not asked about a folder's rights.
bool labelsDecideToo()
{
    constexpr std::size_t kLongestName = 4096;
    std::array<char, kLongestName> space{};
    const auto label = nameOfThisProcess("/proc/self/attr/current", space);
    if (!label || label->find(':') != std::string_view::npos)
        return true;
    const auto single = nameOfThisProcess("/proc/self/attr/smack/current", space);
    return !single || !single->empty();
}

} // namespace

FileSystemTraits traitsOf(int folder)
{
    static const bool kLabelsDecideToo = labelsDecideToo();
    const auto fileSystem = fileSystemOf(folder);
    FileSystemTraits traits;
    traits.gainsByThreads = std::thread::hardware_concurrency() > 1;
    if (!fileSystem ||
        std::ranges::find(kKnownFileSystems, typeOf(*fileSystem)) == kKnownFileSystems.end())
        return traits;
    traits.listsToTheEnd = true;
    traits.modeDecidesForOwner = !kLabelsDecideToo && (fileSystem->f_flags & ST_RDONLY) == 0;
    return traits;
}
