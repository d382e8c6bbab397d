#pragma once

#include "largefiles/search/LargeFileSearch.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/MadeTree.h"

#include <algorithm>
#include <atomic>

inline constexpr qint64 kLarge = kSmallestLargeFile;

/// The grant of a made tree as home.
class HomeAccess final : public FolderAccess
{
public:
    explicit HomeAccess(const MadeTree &home)
        : FolderAccess(home.path(), home.descriptor(), Answers::WhileAccessed)
    {
    }
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

/// The same in sorted order, because several threads may find things in any order.
inline QByteArrayList sorted(QByteArrayList list)
{
    std::sort(list.begin(), list.end());
    return list;
}
