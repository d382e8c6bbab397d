#pragma once

#include "platform/system/ActingUser.h"
#include "platform/system/Descent.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/FileStatus.h"
#include "platform/system/FileSystemTraits.h"
#include "platform/system/Moment.h"
#include "platform/system/ProcessCalls.h"
#include "platform/system/SystemResult.h"

#include <cstdint>
#include <span>

class ThreadConfinement;

/// Every system call with which the engines and the settings writer use the file system, or find
/// out what other processes do. One interface covers them all, so that tests can fail, watch or
/// interleave each of them. Stateless; any thread. Names are single components unless said
/// otherwise, without NUL.
class SystemCalls : public ProcessCalls
{
public:
    /// Opens a folder for reading by its path relative to another open folder ("." reopens it).
    virtual SystemResult<FileDescriptor> openFolder(int parent, const char *relativePath,
                                                    Descent descent) const = 0;
    /// Opens the folder that holds this one at present, on the same mount. It may be another folder
    /// than the one from which this one was reached: compare before use.
    virtual SystemResult<FileDescriptor> openParent(int folder) const = 0;
    /// Opens a folder by its absolute path. No component may be a link.
    virtual SystemResult<FileDescriptor> openRoot(const char *path) const = 0;
    /// The absolute path without any link, "." or "..", of something that is there. Only for what a
    /// user named.
    virtual SystemResult<QByteArray> realPath(const char *path) const = 0;
    /// Fills the buffer with raw directory entries (see DirectoryEntries); 0 at the end.
    virtual SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const = 0;

    /// The entry itself, never what a link leads to. The name may be a relative path, but for a
    /// mere guess: the folders on it are then followed wherever they lead. It may be "..", "../.."
    /// and so on.
    virtual SystemResult<FileStatus> status(int parent, const char *name) const = 0;
    virtual SystemResult<FileStatus> statusOf(int descriptor) const = 0;
    /// What an entry is, or what it leads to if it is a link. Only for what a user named.
    virtual SystemResult<FileKind> kindBehind(int parent, const char *name) const = 0;
    virtual SystemResult<FileIdentity> identityOf(int descriptor) const = 0;
    /// The identity of an entry of any kind; for a link, the link's own.
    virtual SystemResult<FileIdentity> identity(int parent, const char *name) const = 0;
    /// Whether this process may add and remove entries of the folder (write and search rights).
    virtual bool mayChangeEntries(int folder) const = 0;
    virtual FileSystemTraits fileSystemTraits(int folder) const = 0;
    /// The user whose rights decide in a folder with the sticky bit.
    virtual ActingUser actingUser() const = 0;

    /// Opens an entry of any kind, a link itself, for statusOf() alone; "." makes another
    /// descriptor of the folder, which also serves as one. The file cannot go wholly while this is
    /// open.
    virtual SystemResult<FileDescriptor> openEntry(int parent, const char *name) const = 0;

    virtual SystemResult<void> removeFile(int parent, const char *name) const = 0;
    virtual SystemResult<void> removeFolder(int parent, const char *name) const = 0;
    /// Sets the mode's lower twelve bits of what the descriptor holds open.
    virtual SystemResult<void> setPermissions(int descriptor, std::uint16_t permissions) const = 0;

    /// The bytes that a link holds.
    virtual SystemResult<QByteArray> readLink(int parent, const char *name) const = 0;
    /// Whether another process holds a file lock on any part of an open file.
    virtual SystemResult<bool> isLocked(int file) const = 0;

    /// Opens an existing file for reading.
    virtual SystemResult<FileDescriptor> openFile(int parent, const char *name) const = 0;
    /// Makes a file for writing, readable by its owner alone; an old one of the name is emptied.
    virtual SystemResult<FileDescriptor> createFile(int parent, const char *name) const = 0;
    virtual SystemResult<std::size_t> read(int file, std::span<char> buffer) const = 0;
    virtual SystemResult<std::size_t> write(int file, std::span<const char> bytes) const = 0;
    /// Writes at this many bytes from the start of the file.
    virtual SystemResult<std::size_t> writeAt(int file, std::span<const char> bytes,
                                              std::int64_t offset) const = 0;
    virtual SystemResult<void> sync(int descriptor) const = 0;
    /// Gives an entry another name in its folder. What has that name goes.
    virtual SystemResult<void> rename(int parent, const char *from, const char *to) const = 0;
    /// Gives an entry another name in its folder, which must be free (EEXIST). EINVAL where the
    /// file system cannot see to that.
    virtual SystemResult<void> moveToFree(int parent, const char *from, const char *to) const = 0;

    /// What the kernel's clocks show.
    virtual Moment now() const = 0;
    /// How far the clock that stamps changes in this folder is ahead of the kernel's, in
    /// nanoseconds: 0 where the kernel stamps them itself. For a server's clock it makes a file in
    /// the folder, for an instant.
    virtual SystemResult<std::int64_t> clockDifference(int folder) const = 0;
    /// How the kernel can confine threads.
    virtual const ThreadConfinement &confinement() const = 0;
};
