#include "slices/home/KnownFolder.h"

#include <algorithm>

KnownFolder KnownFolder::at(const HomeProbe &reader, const QByteArray &path)
{
    return {path, reader.identitiesOnTheWay(path), reader.identityOf(path)};
}

bool KnownFolder::isAtOrIn(const KnownFolder &other) const
{
    return isAtOrInside(path, other.path) ||
           (other.itself && std::ranges::find(way, *other.itself) != way.end());
}

bool isAtOrInside(const QByteArray &path, const QByteArray &folder)
{
    return path == folder || path.startsWith(folder + '/');
}
