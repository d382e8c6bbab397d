#pragma once

#include "platform/system/DirectoryEntries.h"
#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"

#include <functional>
#include <span>
#include <vector>

class SystemCalls;

/// How many bytes of directory entries are read at a time.
inline constexpr std::size_t kListingSpace = std::size_t{64} * 1024;

/// All entries of one folder as they were when it was read, in little memory: a folder may hold a
/// million. A value.
class FolderListing final
{
public:
    struct Entry
    {
        std::uint64_t inode;
        std::uint64_t nameOffset : 56;
        FileKind kind : 8;
    };

    /// Reads the folder to its end; returns the errno, and no listing, when the reading breaks off.
    /// `space` is the buffer for the raw directory entries; it is used again for every folder.
    static SystemResult<FolderListing> ofFolder(const SystemCalls &calls, int folder,
                                                std::span<char> space);
    /// A listing of one entry.
    static FolderListing ofEntry(const DirectoryEntry &entry);

    void append(const DirectoryEntry &entry);

    /// Sorts by inode, because on a disk the entries lie in nearly this order.
    void sortByInode();

    using NameTest = std::function<bool(const char *name)>;

    /// Forgets the entries whose names pass the test.
    void removeIf(const NameTest &isUnwanted);
    /// Takes the entries out whose names pass the test; returns each as a listing of its own.
    std::vector<FolderListing> takeOut(const NameTest &isWanted);

    std::size_t size() const { return m_entries.size(); }
    const Entry &at(std::size_t index) const { return m_entries[index]; }
    const char *name(const Entry &entry) const { return m_names.data() + entry.nameOffset; }

private:
    std::vector<Entry> m_entries;
    std::vector<char> m_names;
};
