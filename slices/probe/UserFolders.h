#pragma once

#include "slices/probe/FolderIdentity.h"
#include "slices/probe/HomePaths.h"

/// The folders of a freedesktop home in which the user keeps his own files. Nothing in them may be
/// taken for something else, whatever their names and however many links lead to them. One thread.
class UserFolders final
{
public:
    /// Both must outlive it.
    UserFolders(const HomeProbe &reader, const HomePaths &paths);

    /// Adds a folder by its absolute path, with every path below the home for which that stands. It
    /// may be missing.
    void add(const QByteArray &path);

    /// Whether the path, relative to the home, is one of the folders, or lies around one.
    bool isAtOrAroundOne(const QByteArray &path) const;
    /// Whether the path is one of the folders, or lies in one.
    bool isAtOrInOne(const QByteArray &path) const;

private:
    const HomeProbe &m_reader;
    const HomePaths &m_paths;
    std::vector<FolderIdentity> m_folders;
};
