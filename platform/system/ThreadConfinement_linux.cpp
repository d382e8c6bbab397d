#include "platform/system/ThreadConfinement.h"

#include "platform/base/Indestructible.h"

#include <QtGlobal>
#include <cerrno>
#include <cstdint>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr std::uint64_t kRemoving = LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE;
/// A new name counts as an entry that is made.
constexpr std::uint64_t kMaking = LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR |
                                  LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK |
                                  LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
                                  LANDLOCK_ACCESS_FS_MAKE_SYM;
constexpr std::uint64_t kListing = LANDLOCK_ACCESS_FS_READ_DIR;
/// Nothing needs it. Reading files stays free: libraries may read their own at any time, and
/// nothing is lost by it.
constexpr std::uint64_t kForbidden = LANDLOCK_ACCESS_FS_WRITE_FILE;

long interfaceVersion()
{
    static const long version =
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    return version;
}

std::uint64_t accessOf(FolderRights rights)
{
    switch (rights) {
    case FolderRights::Emptying:
        return kListing | kRemoving | kMaking;
    case FolderRights::RemovingEntries:
        return kRemoving | kMaking;
    case FolderRights::Listing:
        return kListing;
    }
    Q_UNREACHABLE();
}

SystemResult<void> checked(long answer)
{
    if (answer != 0)
        return tl::unexpected(errno);
    return {};
}

class HostConfinement final : public ThreadConfinement
{
public:
    bool isAvailable() const override { return interfaceVersion() >= 1; }

    SystemResult<FileDescriptor> makeRules() const override
    {
        landlock_ruleset_attr handled{};
        handled.handled_access_fs = kRemoving | kMaking | kListing | kForbidden;
        const long rules = ::syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0);
        if (rules < 0)
            return tl::unexpected(errno);
        return FileDescriptor(static_cast<int>(rules));
    }

    SystemResult<void> allow(int rules, int folder, FolderRights rights) const override
    {
        landlock_path_beneath_attr beneath{};
        beneath.parent_fd = folder;
        beneath.allowed_access = accessOf(rights);
        return checked(
            ::syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &beneath, 0));
    }

    SystemResult<void> enterForGood(int rules) const override
    {
        // The kernel asks for it: otherwise a program with more rights could be misled.
        const auto given = checked(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0));
        return given ? checked(::syscall(SYS_landlock_restrict_self, rules, 0)) : given;
    }
};

} // namespace

const ThreadConfinement &hostConfinement()
{
    static const Indestructible<HostConfinement> confinement;
    return *confinement;
}
