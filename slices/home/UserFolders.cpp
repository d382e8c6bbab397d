#include "slices/home/UserFolders.h"

#include <algorithm>

UserFolders::UserFolders(const HomeProbe &reader, const HomePaths &paths)
    : m_reader(reader), m_paths(paths)
{
}

void UserFolders::add(const QByteArray &path)
{
    for (const QByteArray &place : m_paths.followed(path))
        m_folders.push_back(KnownFolder::at(m_reader, place));
}

bool UserFolders::isAtOrAroundOne(const QByteArray &place) const
{
    const KnownFolder around = KnownFolder::at(m_reader, place);
    return std::ranges::any_of(m_folders,
                               [&](const KnownFolder &folder) { return folder.isAtOrIn(around); });
}

bool UserFolders::isAtOrInOne(const QByteArray &place) const
{
    const KnownFolder inside = KnownFolder::at(m_reader, place);
    return std::ranges::any_of(m_folders,
                               [&](const KnownFolder &folder) { return inside.isAtOrIn(folder); });
}
