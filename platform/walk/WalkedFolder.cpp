#include "platform/walk/WalkedFolder.h"

#include <new>

WalkedFolder::WalkedFolder(const WalkedFolder *parent, std::string_view name,
                           const FileStatus &status)
    : m_parent(parent),
      m_owner(status.owner),
      m_permissions(status.permissions),
      m_nameLength(static_cast<std::uint16_t>(name.size()))
{
    name.copy(reinterpret_cast<char *>(this + 1), m_nameLength);
}

const WalkedFolder *WalkedFolder::make(const WalkedFolder *parent, std::string_view name,
                                       const FileStatus &status)
{
    void *space = ::operator new(sizeof(WalkedFolder) + name.size());
    return ::new (space) WalkedFolder(parent, name, status);
}

void WalkedFolder::destroy(const WalkedFolder *folder)
{
    folder->~WalkedFolder();
    // The folder was const, its memory never was.
    ::operator delete(const_cast<WalkedFolder *>(folder)); // NOLINT(*-const-cast)
}

QByteArray WalkedFolder::pathTo(std::string_view entryName) const
{
    std::size_t length = entryName.size();
    for (const WalkedFolder *folder = this; folder->m_parent != nullptr; folder = folder->m_parent)
        length += folder->name().size() + 1;
    if (entryName.empty() && length > 0)
        --length; // the path of a folder ends in its name

    QByteArray path(static_cast<qsizetype>(length), '/');
    char *end = path.data() + length - entryName.size();
    entryName.copy(end, entryName.size());
    if (!entryName.empty())
        --end;
    for (const WalkedFolder *folder = this; folder->m_parent != nullptr;
         folder = folder->m_parent) {
        end -= folder->name().size();
        folder->name().copy(end, folder->name().size());
        --end;
    }
    return path;
}

WalkedFolderRef WalkedFolderRef::start(const FileStatus &status)
{
    return WalkedFolderRef(WalkedFolder::make(nullptr, {}, status));
}

WalkedFolderRef WalkedFolderRef::child(std::string_view name, const FileStatus &status) const
{
    retain(m_folder);
    return WalkedFolderRef(WalkedFolder::make(m_folder, name, status));
}

void WalkedFolderRef::retain(const WalkedFolder *folder)
{
    if (folder != nullptr)
        folder->m_references.fetch_add(1, std::memory_order_relaxed);
}

void WalkedFolderRef::release(const WalkedFolder *folder)
{
    while (folder != nullptr && folder->m_references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        const WalkedFolder *parent = folder->m_parent;
        WalkedFolder::destroy(folder);
        folder = parent;
    }
}
