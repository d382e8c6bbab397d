#include "slices/probe/FolderIdentity.h"

#include <algorithm>

FolderIdentity FolderIdentity::at(const HomeProbe &reader, const QByteArray &path)
{
    return {path, reader.idsOnTheWay(path), reader.idOf(path)};
}

bool FolderIdentity::isAtOrIn(const FolderIdentity &other) const
{
    return isAtOrInside(path, other.path) ||
           (other.itself && std::ranges::find(way, *other.itself) != way.end());
}

bool isAtOrInside(const QByteArray &path, const QByteArray &folder)
{
    return path == folder || path.startsWith(folder + '/');
}
