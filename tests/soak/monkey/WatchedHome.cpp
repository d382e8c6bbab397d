#include "tests/soak/monkey/WatchedHome.h"

#include "slices/exclusions/ExcludedPaths.h"

#include <algorithm>
#include <optional>
#include <sys/stat.h>

namespace {

constexpr off_t kOutsideSize = 4321;

/// Nothing when nothing is there. A folder's size says nothing.
std::optional<qint64> sizeAt(const QByteArray &path)
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return std::nullopt;
    return S_ISDIR(status.st_mode) ? 0 : status.st_size;
}

bool isAtOrBelow(const QByteArray &path, const QByteArray &top)
{
    return path == top || path.startsWith(top + '/');
}

bool isExcluded(const QByteArray &path, const FileUrls &exclusions)
{
    return std::ranges::any_of(
        exclusions, [&](const FileUrl &excluded) { return isAtOrBelow(path, excluded.path()); });
}

} // namespace

WatchedHome::WatchedHome(const ScratchFolder &place, const SampleHome &home) : m_home(home)
{
    const QByteArray outside = place.makeFolder("outside/deep");
    QByteArrayList made{place.makeFile("outside/deep/file", kOutsideSize),
                        place.makeFile("outside/file", kOutsideSize)};
    int number = 0;
    for (int slice = 0; slice < kSliceCount; ++slice) {
        for (const QByteArray &location : home.locationsOf(slice)) {
            const QByteArray link =
                home.path(location) + "/way out " + QByteArray::number(++number);
            if (::symlink(outside.constData(), link.constData()) != 0)
                continue; // the location is a file
        }
    }
    for (const QByteArray &path : home.paths())
        made.append(home.path(path));
    for (const QByteArray &path : made)
        m_sizes.insert(path, sizeAt(path).value());
}

QStringList WatchedHome::exclusions() const
{
    const QByteArray cache = m_home.locationsOf(indexOf(SliceKind::Cache)).constFirst();
    QStringList stored;
    for (const QByteArray &path : {QByteArray(SampleHome::kKeep), cache + "/no text \xff\xfe",
                                   QByteArray("Pictures/2014")}) {
        const bool isFolder = !path.startsWith(cache);
        const FileUrl url = m_home.url(path, isFolder ? FileUrlKind::Folder : FileUrlKind::File);
        stored.append(QString::fromLatin1(url.absoluteString()));
    }
    return stored;
}

/// Large files are what the user has picked; all else is known from the home that was made.
QByteArrayList WatchedHome::pathsOf(const SliceSelection::ChosenSlice &slice) const
{
    const SliceKind kind = sliceKindNamed(slice.record->name()).value();
    QByteArrayList paths;
    if (kind == SliceKind::LargeFiles) {
        for (const FileUrl &url : slice.fileURLs.value_or(FileUrls()))
            paths.append(url.path());
        return paths;
    }
    for (const QByteArray &path : m_home.pathsCleanedWith(indexOf(kind)))
        paths.append(m_home.path(path));
    return paths;
}

void WatchedHome::allow(const SliceSelection::Choice &choice)
{
    const FileUrls exclusions = ExcludedPaths::fromStoredStrings(choice.excludedPaths).urls();
    for (const SliceSelection::ChosenSlice &slice : choice.slices) {
        for (const QByteArray &path : pathsOf(slice)) {
            if (!isExcluded(path, exclusions))
                m_allowed.insert(path);
        }
    }
}

QByteArrayList WatchedHome::lost() const
{
    QByteArrayList paths;
    for (auto made = m_sizes.begin(); made != m_sizes.end(); ++made) {
        const auto size = sizeAt(made.key());
        const bool mayBeGone = !size && m_allowed.contains(made.key());
        if (size != made.value() && !mayBeGone)
            paths.append(made.key());
    }
    return paths;
}

int WatchedHome::removedCount() const
{
    return static_cast<int>(std::count_if(m_sizes.keyBegin(), m_sizes.keyEnd(),
                                          [](const QByteArray &path) { return !sizeAt(path); }));
}
