#include "platform/files/FolderListing.h"

#include "platform/system/SystemCalls.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint64_t kMaxOffset = (std::uint64_t(1) << 56) - 1; // what the entry has room for

} // namespace

SystemResult<FolderListing> FolderListing::ofFolder(const SystemCalls &calls, int folder,
                                                    std::span<char> space)
{
    FolderListing listing;
    for (;;) {
        const auto filled = calls.readEntries(folder, space);
        if (!filled)
            return tl::unexpected(filled.error());
        if (*filled == 0)
            return listing;
        DirectoryEntries entries(space.first(*filled));
        DirectoryEntry entry;
        while (entries.next(entry))
            listing.append(entry);
    }
}

FolderListing FolderListing::ofEntry(const DirectoryEntry &entry)
{
    FolderListing listing;
    listing.append(entry);
    return listing;
}

void FolderListing::sortByInode()
{
    std::sort(m_entries.begin(), m_entries.end(),
              [](const Entry &left, const Entry &right) { return left.inode < right.inode; });
}

void FolderListing::removeIf(const NameTest &isUnwanted)
{
    std::erase_if(m_entries, [&](const Entry &entry) { return isUnwanted(name(entry)); });
}

std::vector<FolderListing> FolderListing::takeOut(const NameTest &isWanted)
{
    std::vector<FolderListing> taken;
    std::erase_if(m_entries, [&](const Entry &entry) {
        if (!isWanted(name(entry)))
            return false;
        taken.push_back(ofEntry({name(entry), entry.inode, entry.kind}));
        return true;
    });
    return taken;
}

void FolderListing::append(const DirectoryEntry &entry)
{
    m_entries.push_back({entry.inode, m_names.size() & kMaxOffset, entry.kind});
    m_names.insert(m_names.end(), entry.name, entry.name + std::strlen(entry.name) + 1);
}
