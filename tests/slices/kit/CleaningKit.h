#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/HostSystemCalls.h"
#include "slices/cleaning/Cleaning.h"
#include "slices/removal/AsideNames.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/OpenedFolder.h"
#include "tests/support/run/LogRecorder.h"

#include <QByteArrayList>
#include <QFile>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <sys/stat.h>

/// What the tests of cleaning share: locations to clean, trees, and what is left of them.

/// Read-only folders in it, too.
inline void removeTree(const std::filesystem::path &path)
{
    std::error_code error;
    std::filesystem::remove_all(path, error);
    if (!error)
        return;
    constexpr auto kAll = std::filesystem::perms::owner_all;
    std::filesystem::permissions(path, kAll, error);
    for (auto entry = std::filesystem::recursive_directory_iterator(path, error);
         entry != std::filesystem::recursive_directory_iterator(); entry.increment(error)) {
        if (entry->is_directory(error) && !entry->is_symlink(error))
            std::filesystem::permissions(*entry, kAll, error);
    }
    std::filesystem::remove_all(path, error);
}

/// A folder of the test's own, gone with it. In memory, where that is fast enough to try thousands
/// of trees; no test cleans outside one.
class CleaningGround final
{
public:
    enum class Medium { Memory, Disk };

    explicit CleaningGround(Medium medium = Medium::Memory)
    {
        const bool isForOneThread = medium == Medium::Memory && std::filesystem::exists("/dev/shm");
        std::string pattern = isForOneThread ? "/dev/shm/vantor-XXXXXX" : "/tmp/vantor-XXXXXX";
        if (!::mkdtemp(pattern.data()))
            qFatal("a test of cleaning needs a folder of its own");
        m_path = QByteArray::fromStdString(pattern);
    }
    ~CleaningGround() { removeTree(m_path.toStdString()); }
    CleaningGround(const CleaningGround &) = delete;
    CleaningGround &operator=(const CleaningGround &) = delete;

    QByteArray path() const { return m_path; }
    QByteArray operator/(const QByteArray &relative) const { return m_path + '/' + relative; }

private:
    QByteArray m_path;
};

inline std::filesystem::path native(const QByteArray &path)
{
    return std::filesystem::path(path.toStdString());
}

inline void makeFolder(const QByteArray &path)
{
    std::filesystem::create_directories(native(path));
}

/// With the folders around it.
inline void makeFile(const QByteArray &path, const QByteArray &content = "x")
{
    std::filesystem::create_directories(native(path).parent_path());
    std::ofstream(native(path), std::ios::binary) << content.toStdString();
}

inline void makeLink(const QByteArray &path, const QByteArray &target)
{
    std::filesystem::create_directories(native(path).parent_path());
    std::filesystem::create_symlink(native(target), native(path));
}

inline bool exists(const QByteArray &path)
{
    struct stat found
    {
    };
    return ::lstat(path.constData(), &found) == 0;
}

/// Everything below a folder, as relative paths in the bytes of their names.
inline std::set<QByteArray> tree(const QByteArray &folder)
{
    std::set<QByteArray> found;
    const auto skip = static_cast<qsizetype>(folder.size() + 1);
    for (const auto &entry : std::filesystem::recursive_directory_iterator(native(folder)))
        found.insert(QByteArray::fromStdString(entry.path().native()).sliced(skip));
    return found;
}

/// The descriptors that this process has open.
inline std::size_t openDescriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

using GrantedFolder = FolderAccess;

inline QString stored(const FileUrl &url)
{
    return QString::fromLatin1(url.absoluteString());
}

inline ExcludedPaths excluding(const FileUrls &urls)
{
    QStringList strings;
    for (const FileUrl &url : urls)
        strings.append(stored(url));
    return ExcludedPaths::fromStoredStrings(strings);
}

inline SliceToClean contentsOf(const FileUrls &folders)
{
    return {.name = QStringLiteral("Downloads"),
            .fileURLs = folders,
            .confirmed = Moment::never(),
            .content = SliceContent::Folders};
}

inline SliceToClean theFiles(const FileUrls &files)
{
    return {.name = QStringLiteral("Browser Data"),
            .fileURLs = files,
            .confirmed = Moment::never(),
            .content = SliceContent::Files};
}

/// Plans and performs, as the page does.
inline CleaningReport clean(const FileAccess &access, const QList<SliceToClean> &slices,
                            const ExcludedPaths &excluded = {},
                            const SystemCalls &calls = hostSystemCalls())
{
    const CleaningGround notes;
    AsideNames names(hostSystemCalls(), QFile::decodeName(notes.path()));
    return performCleaning(calls, makeCleaningPlan(calls, access, slices, excluded), {}, {},
                           &names);
}
