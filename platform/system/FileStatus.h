#pragma once

#include <QByteArray>
#include <cstdint>

enum class FileKind : std::uint8_t { Unknown, Regular, Folder, Link, Other };

/// Which file something is, whatever its names, for as long as it is there: once it is gone, the
/// number is soon another's. See FileIdentity.
struct InodeId
{
    std::uint64_t device = 0; ///< valid within one boot
    std::uint64_t inode = 0;

    friend bool operator==(const InodeId &, const InodeId &) = default;
};

/// What one status call brings.
struct FileStatus
{
    FileKind kind = FileKind::Unknown;
    std::uint16_t permissions = 0; ///< the mode's lower twelve bits
    std::uint32_t owner = 0;
    std::uint64_t size = 0; ///< bytes, as the directory listing shows it
    std::uint64_t inode = 0;
    std::uint64_t device = 0;
    bool isImmutable = false; ///< by attribute: it can be neither changed nor removed
    bool isAppendOnly = false;
    bool isMountRoot = false;

    InodeId inodeId() const { return {device, inode}; }
};

/// What tells one folder or file from every other, also from one put in its place under its name:
/// an inode number alone is reused at once.
struct FileIdentity
{
    QByteArray handle; ///< the file system's own handle, with its type; empty where it gives none
    std::uint64_t fileSystem = 0;
    std::uint64_t device = 0; ///< valid within one boot
    std::uint64_t inode = 0;
    std::int64_t birthSeconds = 0; ///< 0 where the file system keeps no birth time
    std::uint32_t birthNanoseconds = 0;

    InodeId inodeId() const { return {device, inode}; }

    friend bool operator==(const FileIdentity &, const FileIdentity &) = default;
};
