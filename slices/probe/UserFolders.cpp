#include "slices/probe/UserFolders.h"

#include <algorithm>

UserFolders::UserFolders(const HomeProbe &reader, const HomePaths &paths)
    : m_reader(reader), m_paths(paths)
{
}

void UserFolders::add(const QByteArray &path)
{
    for (const QByteArray &below : m_paths.followed(path))
        m_folders.push_back(FolderIdentity::at(m_reader, below));
}

bool UserFolders::isAtOrAroundOne(const QByteArray &path) const
{
    const FolderIdentity around = FolderIdentity::at(m_reader, path);
    return std::ranges::any_of(
        m_folders, [&](const FolderIdentity &folder) { return folder.isAtOrIn(around); });
}

bool UserFolders::isAtOrInOne(const QByteArray &path) const
{
    const FolderIdentity inside = FolderIdentity::at(m_reader, path);
    return std::ranges::any_of(
        m_folders, [&](const FolderIdentity &folder) { return inside.isAtOrIn(folder); });
}
