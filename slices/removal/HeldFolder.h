#pragma once

#include "slices/removal/FolderWay.h"
#include "slices/removal/RemovalSteps.h"

#include <QByteArray>
#include <mutex>
#include <utility>
#include <vector>

/// Folders that were emptied and are still there. Any thread.
class EmptiedFolders final
{
public:
    struct Folder
    {
        QByteArray name;
        std::uint64_t inode = 0;
        LentRights rights = {}; ///< given back already
    };

    void add(Folder folder)
    {
        const std::scoped_lock lock(m_mutex);
        m_folders.push_back(std::move(folder));
    }
    /// When all threads are done.
    std::vector<Folder> &all() { return m_folders; }
    bool isEmpty() const { return m_folders.empty(); }

private:
    std::mutex m_mutex;
    std::vector<Folder> m_folders;
};

/// A folder that is held open while its entries are dealt with.
struct HeldFolder
{
    int descriptor = -1;
    QByteArray path; ///< raw, with a trailing slash
    EntryPolicy policy = EntryPolicy::Removed;
    FolderState state = FolderState::Changed;
    /// Its own inode number, and the way up to the location.
    FolderWay way = {};
    /// If given, the folders directly in this one are emptied but not removed, and added here.
    EmptiedFolders *emptied = nullptr;
};
