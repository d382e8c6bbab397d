#pragma once

#include "largefiles/search/LargeFileSearch.h"
#include "tests/support/disk/MadeTree.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"

#include <algorithm>
#include <atomic>

inline constexpr qint64 kLarge = kSmallestLargeFile;

/// The grant of a made tree as home; counts how it is used, from any thread.
class HomeAccess final : public FileAccess
{
public:
    explicit HomeAccess(const MadeTree &home) : m_home(home) {}
    ~HomeAccess() override { awaitBackgroundThreads(); }

    int starts() const { return m_starts; }
    int stops() const { return m_stops; }

    void startAccessing() override { ++m_starts; }
    void stopAccessing() override { ++m_stops; }
    std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
    {
        const QByteArray home = m_home.path() + '/';
        if (!url.path().startsWith(home) || m_starts <= m_stops)
            return std::nullopt;
        return AnchoredPath{m_home.descriptor(), url.path().mid(home.size())};
    }

private:
    const MadeTree &m_home;
    std::atomic<int> m_starts = 0;
    std::atomic<int> m_stops = 0;
};

inline FileUrl homeUrl(const MadeTree &home)
{
    return FileUrl::fromPath(home.path(), FileUrlKind::Folder);
}

inline FileUrl fileIn(const MadeTree &home, const QByteArray &relativePath)
{
    return FileUrl::fromPath(home.path(relativePath), FileUrlKind::File);
}

/// Makes folders, those that end in a slash, and large files.
inline void make(const MadeTree &home, const QByteArrayList &relativePaths)
{
    for (const QByteArray &path : relativePaths) {
        if (path.endsWith('/'))
            home.makeFolder(path.chopped(1));
        else
            home.makeFile(path, kLarge);
    }
}

/// Writes down what a search says, by paths relative to the home.
class SearchRecord final : public LargeFileListener
{
public:
    explicit SearchRecord(const MadeTree &home) : m_home(home.path() + '/') {}

    QByteArrayList files;    ///< in the order of discovery
    QByteArrayList folders;  ///< the last names of the folders searched
    QByteArrayList failures; ///< "path: errno"
    QList<File> records;

    void searching(const FileUrl &folder) override { folders.append(folder.lastPathComponent()); }
    void found(const File &file) override
    {
        files.append(relative(file.fileURL()));
        records.append(file);
    }
    void unreadable(const UnreadablePlace &place) override
    {
        failures.append(relative(place.url) + ": " + QByteArray::number(place.error));
    }

private:
    QByteArray relative(const FileUrl &url) const { return url.path().mid(m_home.size()); }

    const QByteArray m_home;
};

/// The same in sorted order, for what several threads may find in any.
inline QByteArrayList sorted(QByteArrayList list)
{
    std::sort(list.begin(), list.end());
    return list;
}
