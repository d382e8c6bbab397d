#pragma once

#include "platform/system/SystemResult.h"
#include "slices/home/FoundPrograms.h"
#include "slices/home/HomeEnvironment.h"
#include "slices/probe/HomePaths.h"
#include "slices/probe/UserDirs.h"
#include "slices/probe/UserFolders.h"

/// Finds the locations of one freedesktop home. Locations with a fixed name come first. The user's
/// own files and the environment may then add only locations that lie neither in nor around a known
/// one. One thread.
class FreedesktopSurvey final
{
public:
    /// The reader and the paths must outlive it.
    FreedesktopSurvey(const HomeProbe &reader, const HomePaths &paths, FileUrl home,
                      HomeEnvironment environment);

    HomeLayout::Findings findings();

private:
    void readUserDirs();
    void addNamedDownloads(const QByteArray &path);
    SystemResult<QByteArray> userDirsText() const;
    void addFolders(SliceKind kind, const char *pattern);
    void addAppLogs();
    void addTrash(const QByteArray &trash);
    void addDownloads();
    std::optional<QByteArray> downloadsFolder() const;
    void addMailDownloads();
    void findBrowserData();
    void addPrograms();
    FileUrls locationsOf(const FoundProgram &found) const;
    FileUrls cacheLocations(const QByteArray &cache) const;
    void addTrashOfEnvironment();
    void addCacheOfEnvironment();
    bool isCacheOfAllPrograms(const QByteArray &path) const;
    void addSearchFolders();
    void addPlacesOutOfReach();

    bool add(SliceKind kind, const QByteArray &path);
    bool touchesKnown(const QByteArray &path) const;
    bool isTheUsers(const QByteArray &path) const;
    std::optional<QByteArray> named(const char *variable) const;
    bool mayBeDownloads(const QByteArray &path) const;
    FileUrl folderUrl(const QByteArray &path) const;

    const HomeProbe &m_reader;
    const HomePaths &m_paths;
    const FileUrl m_home;
    const HomeEnvironment m_environment;
    UserDirs m_userDirs;
    /// Whether the file was read and understood, or there is none. Otherwise it is unknown where
    /// the user keeps what.
    bool m_userDirsAreKnown = false;
    UserFolders m_userFolders;           ///< downloads are not among them
    UserFolders m_downloads;             ///< where they may be
    std::vector<FolderIdentity> m_known; ///< the locations, and the profiles of browsers
    std::vector<FoundProgram> m_found;
    QByteArrayList m_cacheHomes; ///< the locations that hold the caches of all programs, by name
    HomeLayout::Findings m_findings;
};
