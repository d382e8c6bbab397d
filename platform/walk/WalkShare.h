#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/walk/DirectoryVisitor.h"

#include <memory>
#include <string_view>
#include <vector>

/// The names of subfolders that wait to be entered, back to back in one block of memory.
class FolderNames final
{
public:
    bool isEmpty() const { return m_count == 0; }
    std::size_t count() const { return m_count; }

    void add(std::string_view name);
    /// Removes the name that was added last and returns it. Valid until the next call that changes
    /// the list.
    const char *takeLast();
    /// Removes the first half, rounded up, and returns it.
    FolderNames takeFirstHalf();
    void clear();

private:
    std::vector<char> m_bytes; ///< each name with its NUL; may end with the name taken last
    std::size_t m_used = 0;
    std::size_t m_count = 0;
};

/// One folder on a thread's way down.
struct WalkLevel
{
    WalkedFolderRef folder;
    InodeId id = {};
    std::shared_ptr<const FileDescriptor> descriptor; ///< null while it is closed to keep the bound
    EntryDetail detail = EntryDetail::Status;
    FolderNames waiting;
};

/// Work that one thread hands to another: subfolders of an open folder, or raw entries of it that
/// no thread has looked at yet.
struct WalkShare
{
    WalkLevel level;
    std::vector<char> entries; ///< as SystemCalls::readEntries filled them
};
