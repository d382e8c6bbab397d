#include "tests/support/calls/PossibleErrors.h"

#include <cerrno>
#include <map>
#include <vector>

namespace {

using Errors = std::vector<int>;

Errors operator+(Errors errors, const Errors &more)
{
    errors.insert(errors.end(), more.begin(), more.end());
    return errors;
}

std::map<std::string_view, Errors> makeTable()
{
    const Errors memory{ENOMEM};
    const Errors descriptors{EMFILE, ENFILE};
    const Errors disk{EIO, ESTALE};
    const Errors space{ENOSPC, EDQUOT};
    const Errors path = disk + memory + Errors{EACCES, ELOOP, ENOENT, ENOTDIR};
    const Errors open = path + descriptors + Errors{EINTR, EPERM};
    const Errors change = path + Errors{EBUSY, EINTR, EPERM, EROFS};
    const Errors move = change + space + Errors{EEXIST, EINVAL, EXDEV};
    return {
        {"openFolder", open + Errors{EAGAIN, EXDEV}},
        {"openParent", open + Errors{EAGAIN, EXDEV}},
        {"openRoot", open + Errors{EAGAIN}},
        {"realPath", path},
        {"readEntries", disk + memory + Errors{EINTR, EINVAL, ENOENT}},
        {"status", path + Errors{EINTR}},
        {"statusOf", disk + memory + Errors{EACCES, EINTR}},
        {"kindBehind", path},
        {"identityOf", disk + memory + Errors{EACCES, EINTR, ENOSYS}},
        {"identity", path + Errors{EINTR, ENOSYS}},
        {"mayChangeEntries", {EACCES}},
        {"openEntry", open},
        {"removeFile", change + space + Errors{EISDIR}},
        {"removeFolder", change + space + Errors{EINVAL, ENOTEMPTY}},
        {"setPermissions", disk + memory + Errors{EINTR, EPERM, EROFS}},
        {"readLink", path + Errors{EINVAL}},
        {"isLocked", disk + Errors{EAGAIN, EINTR, ENOLCK}},
        {"programNames", memory + descriptors + Errors{EACCES, EIO}},
        {"filesInUse", memory + descriptors + Errors{EACCES, EIO}},
        {"openFile", open + Errors{ENXIO}},
        {"createFile", open + space + Errors{EEXIST, EISDIR, EROFS}},
        {"read", disk + memory + Errors{EAGAIN, EINTR, EISDIR}},
        {"write", disk + memory + space + Errors{EAGAIN, EFBIG, EINTR, EPERM}},
        {"writeAt", disk + memory + space + Errors{EAGAIN, EFBIG, EINTR, EPERM}},
        {"sync", disk + space + Errors{EINTR, EROFS}},
        {"rename", move + Errors{EISDIR, ENOTEMPTY}},
        {"moveToFree", move + Errors{ENOSYS}},
        {"clockDifference", disk + descriptors + space + Errors{EACCES, EEXIST, ENOENT, EROFS}},
        {"makeRules", memory + descriptors + Errors{E2BIG, EOPNOTSUPP}},
        {"allow", memory + Errors{EINVAL, EPERM}},
        {"enterForGood", memory + Errors{E2BIG, EPERM}},
    };
}

} // namespace

std::span<const int> possibleErrors(std::string_view call)
{
    static const std::map<std::string_view, Errors> table = makeTable();
    const auto found = table.find(call);
    return found == table.end() ? std::span<const int>() : found->second;
}
