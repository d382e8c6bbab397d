#pragma once

#include "platform/files/FileUrl.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/SystemResult.h"

#include <memory>

class SystemCalls;

/// Why a grant does not lead to its folder.
enum class GrantFailure {
    Missing,    ///< no grant is stored at all
    Damaged,    ///< the bytes are not those of a grant, or not all of them
    Gone,       ///< nothing is at the folder's path: moved, removed, or its disk is not mounted
    Replaced,   ///< something else is at its path: another folder, a link, a file
    Unreadable, ///< the folder may not be opened, or the disk fails
    Foreign,    ///< run as root on a folder that is not root's
};

/// The reason's name, for logs.
const char *nameOf(GrantFailure failure);

/// The folder that a grant led to. The descriptor stays on this folder, whatever happens to its
/// path later; work below the folder starts at the descriptor.
struct GrantedFolder
{
    FileUrl url;
    std::shared_ptr<const FileDescriptor> folder;
};

/// A grant is the user's consent to one folder, in bytes that can be stored: the folder's real
/// path, and what distinguishes it from any other folder that may later be at that path. A grant is
/// not a permission: the system checks its own permissions each time.
///
/// Makes the grant of the folder that the user picked, by an absolute path. Links in the path are
/// resolved here, once; the grant names the real folder. Errors (errno): those of finding and
/// opening the folder; EPERM for "/", and for root on a folder of another user; EOPNOTSUPP where
/// the file system gives nothing that distinguishes this folder from a new one at the same path. A
/// few system calls. Any thread. The same folder always gives the same bytes.
SystemResult<QByteArray> makeGrant(const SystemCalls &calls, const QByteArray &path);

/// Opens the folder that the grant names, if it is still the same folder. It never opens another
/// one, not even for damaged bytes. A few system calls. Any thread.
tl::expected<GrantedFolder, GrantFailure> resolveGrant(const SystemCalls &calls,
                                                       const QByteArray &grant);
