#pragma once

#include "platform/system/FileStatus.h"

#include <cstdint>
#include <span>

/// One entry of a folder, as listed. The name lives in the buffer that was read.
struct DirectoryEntry
{
    const char *name = nullptr;
    std::uint64_t inode = 0;
    FileKind kind = FileKind::Unknown; ///< Unknown where the file system does not say
};

/// Walks the directory entries that SystemCalls::readEntries put into a buffer; leaves out "." and
/// "..". A view: the buffer must outlive it.
class DirectoryEntries final
{
public:
    explicit DirectoryEntries(std::span<const char> filled) : m_rest(filled) {}

    /// Puts the next entry into `entry`; false at the end.
    bool next(DirectoryEntry &entry);

private:
    std::span<const char> m_rest;
};
