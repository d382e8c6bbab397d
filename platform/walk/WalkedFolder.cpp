#include "platform/walk/WalkedFolder.h"

QByteArray WalkedFolder::pathTo(std::string_view entryName) const
{
    std::size_t length = entryName.size();
    for (const WalkedFolder *folder = this; folder->m_parent != nullptr; folder = folder->m_parent)
        length += folder->m_name.size() + 1;
    if (entryName.empty() && length > 0)
        --length; // the path of a folder ends in its name

    QByteArray path(static_cast<qsizetype>(length), '/');
    char *end = path.data() + length - entryName.size();
    entryName.copy(end, entryName.size());
    if (!entryName.empty())
        --end;
    for (const WalkedFolder *folder = this; folder->m_parent != nullptr;
         folder = folder->m_parent) {
        end -= folder->m_name.size();
        folder->m_name.copy(end, folder->m_name.size());
        --end;
    }
    return path;
}

WalkedFolderRef WalkedFolderRef::start(const FileStatus &status)
{
    return WalkedFolderRef(new WalkedFolder(nullptr, {}, status));
}

WalkedFolderRef WalkedFolderRef::child(std::string_view name, const FileStatus &status) const
{
    retain(m_folder);
    return WalkedFolderRef(new WalkedFolder(m_folder, name, status));
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
        delete folder;
        folder = parent;
    }
}
