#include "slices/UserFolders.h"

#include <algorithm>

UserFolders::UserFolders(const HomeReader &reader, const QByteArray &homePath)
    : m_reader(reader), m_homePath(homePath)
{
}

void UserFolders::add(const QByteArray &path)
{
    addFolder(path);
    const auto link = m_reader.linkAt(path);
    const auto target = link ? linkTargetBelowHome(path, *link, m_homePath) : std::nullopt;
    if (target)
        addFolder(*target);
}

void UserFolders::addFolder(const QByteArray &path)
{
    Folder folder{path, m_reader.identitiesOnTheWay(path), m_reader.identityOf(path)};
    m_folders.push_back(std::move(folder));
}

bool UserFolders::isAtOrAroundOne(const QByteArray &place) const
{
    const auto identity = m_reader.identityOf(place);
    return std::any_of(m_folders.begin(), m_folders.end(), [&](const Folder &folder) {
        return isAtOrInside(folder.path, place) ||
               (identity && std::ranges::find(folder.way, *identity) != folder.way.end());
    });
}

bool UserFolders::isAtOrInOne(const QByteArray &place) const
{
    const auto way = m_reader.identitiesOnTheWay(place);
    return std::any_of(m_folders.begin(), m_folders.end(), [&](const Folder &folder) {
        return isAtOrInside(place, folder.path) ||
               (folder.itself && std::ranges::find(way, *folder.itself) != way.end());
    });
}

bool isAtOrInside(const QByteArray &path, const QByteArray &folder)
{
    return path == folder || path.startsWith(folder + '/');
}
