#pragma once

#include <QByteArray>
#include <cstdint>

enum class FileKind : std::uint8_t { Unknown, Regular, Folder, Link, Other };

/// Identifies a file, whatever its names, as long as it exists. Once it is gone, another file soon
/// gets its number. See FileIdentity.
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
    std::uint32_t links = 0;         ///< how many names it has; folders count in ways of their own
    std::int64_t contentChanged = 0; ///< nanoseconds since 1970; programs can set it
    /// Nanoseconds since 1970: the last change of the content, the names, the place or the rights.
    /// Only the system sets it.
    std::int64_t changed = 0;
    bool isImmutable = false; ///< by attribute: it can be neither changed nor removed
    bool isAppendOnly = false;
    bool isMountRoot = false;
    /// Owner and group have numbers of their own here, and the file system tells the attributes.
    bool tellsAll = false;

    InodeId inodeId() const { return {device, inode}; }
};

/// Distinguishes a folder or file from every other, also from a later one of the same name. An
/// inode number alone is not enough: the file system uses it again at once.
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
