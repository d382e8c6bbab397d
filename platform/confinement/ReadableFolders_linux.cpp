#include "platform/confinement/ReadableFolders.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// All rights over files that a kernel of this version can take away. Later versions know more, but
/// those of headers that are too old have no name.
__u64 rightsOf(long version)
{
    constexpr __u64 kFirst = (1ULL << 13) - 1;
    constexpr __u64 kMoveAcross = 1ULL << 13;    // from version 2 on
    constexpr __u64 kTruncate = 1ULL << 14;      // 3
    constexpr __u64 kDeviceControl = 1ULL << 15; // 5
    constexpr int kHasDeviceControl = 5;
    return kFirst | (version >= 2 ? kMoveAcross : 0) | (version >= 3 ? kTruncate : 0) |
           (version >= kHasDeviceControl ? kDeviceControl : 0);
}

void letRead(int rules, const char *folder)
{
    const int descriptor = ::open(folder, O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    landlock_path_beneath_attr rule = {};
    rule.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
    rule.parent_fd = descriptor;
    ::syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    ::close(descriptor);
}

} // namespace

bool readOnlyIn(std::span<const char *const> folders)
{
    const long version =
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1 || ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    landlock_ruleset_attr attributes = {};
    attributes.handled_access_fs = rightsOf(version);
    const int rules =
        int(::syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0));
    if (rules < 0)
        return false;
    for (const char *folder : folders)
        letRead(rules, folder);
    const bool isDone = ::syscall(SYS_landlock_restrict_self, rules, 0) == 0;
    ::close(rules);
    return isDone;
}
