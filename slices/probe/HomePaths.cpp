#include "slices/probe/HomePaths.h"

#include "platform/system/SystemCalls.h"

namespace {

/// More than people make. Such texts cannot be trusted, and each name costs calls to the disk.
constexpr qsizetype kMostNames = 256;
constexpr int kMostSteps = 100;

QByteArrayList namesOf(const QByteArray &path)
{
    QByteArrayList names = path.split('/');
    names.removeIf([](const QByteArray &name) { return name.isEmpty() || name == "."; });
    return names;
}

QByteArrayList withoutLast(const QByteArrayList &names)
{
    return names.first(names.size() - 1);
}

/// The inode of the folder to which a path leads.
SystemResult<InodeId> idBehind(const SystemCalls &calls, const QByteArray &path)
{
    const auto real = calls.realPath(path.constData());
    if (!real)
        return tl::unexpected(real.error());
    const auto folder = calls.openRoot(real->constData());
    const auto status = folder ? calls.statusOf(folder->get()) : tl::unexpected(folder.error());
    return status.map(&FileStatus::inodeId);
}

bool isSame(const SystemCalls &calls, const QByteArray &home, const QByteArray &other)
{
    const auto homeId = idBehind(calls, home);
    return homeId && homeId == idBehind(calls, other);
}

/// What is left of the path behind the folder; nothing where it does not lead through it.
std::optional<QByteArrayList> behind(const QByteArrayList &folder, const QByteArrayList &names)
{
    QByteArrayList way;
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (names[i] != "..")
            way.append(names[i]);
        else if (!way.isEmpty())
            way.removeLast();
        if (way == folder)
            return names.sliced(i + 1);
    }
    return std::nullopt;
}

} // namespace

HomePaths::HomePaths(const HomeProbe &reader, const QByteArrayList &paths) : m_reader(reader)
{
    for (const QByteArray &path : paths)
        m_homes.append(namesOf(path));
}

QByteArrayList HomePaths::leadingTo(const SystemCalls &calls, const QByteArray &homePath,
                                    const QByteArray &otherPath)
{
    QByteArrayList paths{homePath};
    for (const QByteArray &other : {otherPath, usualOtherPath(homePath)}) {
        if (other.startsWith('/') && !paths.contains(other) && isSame(calls, homePath, other))
            paths.append(other);
    }
    return paths;
}

QByteArray HomePaths::usualOtherPath(const QByteArray &homePath)
{
    if (homePath.startsWith("/home/"))
        return "/var" + homePath;
    return homePath.startsWith("/var/home/") ? homePath.sliced(qstrlen("/var")) : QByteArray();
}

std::optional<QByteArray> HomePaths::below(const QByteArray &path) const
{
    if (!path.startsWith('/') || path.contains('\0'))
        return std::nullopt;
    const auto names = namesBelow(namesOf(path));
    if (!names || names->isEmpty() || names->contains(".."))
        return std::nullopt;
    return names->join('/');
}

QByteArrayList HomePaths::followed(const QByteArray &path) const
{
    QByteArrayList places;
    if (!path.startsWith('/') || path.contains('\0'))
        return places;
    auto names = namesBelow(namesOf(path));
    for (int step = 0; step < kMostSteps; ++step) {
        if (!names || names->isEmpty() || names->size() > kMostNames)
            break;
        if (!names->contains(".."))
            places.append(names->join('/'));
        names = pastFirstLink(*names);
    }
    return places;
}

std::optional<QByteArrayList> HomePaths::namesBelow(const QByteArrayList &names) const
{
    for (const QByteArrayList &home : m_homes) {
        if (auto below = behind(home, names))
            return below;
    }
    return std::nullopt;
}

/// Handles the first ".." too; nothing where there is neither, or where it leads out.
std::optional<QByteArrayList> HomePaths::pastFirstLink(const QByteArrayList &names) const
{
    QByteArrayList way;
    for (qsizetype i = 0; i < names.size(); ++i) {
        const QByteArrayList rest = names.sliced(i + 1);
        if (names[i] == "..")
            return way.isEmpty() ? namesBelow(withoutLast(m_homes.constFirst()) + rest)
                                 : withoutLast(way) + rest;
        if (const auto target = m_reader.linkAt((way + QByteArrayList{names[i]}).join('/'))) {
            const QByteArrayList onwards = namesOf(*target) + rest;
            return target->startsWith('/') ? namesBelow(onwards) : way + onwards;
        }
        way.append(names[i]);
    }
    return std::nullopt;
}

bool hasHiddenComponent(const QByteArray &relativePath)
{
    return relativePath.startsWith('.') || relativePath.contains("/.");
}
