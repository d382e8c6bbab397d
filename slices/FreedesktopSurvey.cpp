#include "slices/FreedesktopSurvey.h"

#include "slices/Conversations.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

constexpr auto kUserDirsFile = ".config/user-dirs.dirs";
constexpr std::size_t kLargestUserDirsFile = 64 * 1024;

constexpr auto kHomeTrash = ".local/share/Trash";
constexpr auto kCacheHome = ".cache";
constexpr std::array kTrashFolders{"files", "info", "expunged"};

/// The folders that a freedesktop home names in the user's language, and their plain names.
struct NamedFolder
{
    const char *variable;
    const char *plainName;
};
constexpr NamedFolder kDownloads{"XDG_DOWNLOAD_DIR", "Downloads"};

/// In the order in which large files are looked for. Without a variable a folder has just the name.
constexpr std::array kSearched{
    NamedFolder{"XDG_DESKTOP_DIR", "Desktop"},
    NamedFolder{"XDG_DOCUMENTS_DIR", "Documents"},
    kDownloads,
    NamedFolder{"", "Dropbox"},
    NamedFolder{"XDG_VIDEOS_DIR", "Videos"},
    NamedFolder{"XDG_MUSIC_DIR", "Music"},
    NamedFolder{"XDG_PICTURES_DIR", "Pictures"},
    NamedFolder{"XDG_PUBLICSHARE_DIR", "Public"},
    NamedFolder{"", "Sites"},
};
constexpr NamedFolder kTemplates{"XDG_TEMPLATES_DIR", "Templates"};

constexpr std::array kUpdateFolders{"iPad", "iPod", "iPhone"};

bool isInside(const QByteArray &path, const QByteArray &folder)
{
    return path.startsWith(folder + '/');
}

/// Whether these logs are a repository's, such as one of the user's dot files that has its work
/// tree elsewhere: the record of what was in it before. Its parts may be links.
bool areOfRepository(const HomeReader &reader, const QByteArray &logs)
{
    const QByteArray around = logs.first(logs.lastIndexOf('/') + 1);
    const QByteArray head = around + "HEAD";
    const QByteArray objects = around + "objects";
    return (!reader.filesAmong({head}).isEmpty() || reader.linkAt(head)) &&
           (reader.hasFolder(objects) || reader.linkAt(objects));
}

} // namespace

FreedesktopSurvey::FreedesktopSurvey(const HomeReader &reader, const FileUrl &home,
                                     const HomeEnvironment &environment)
    : m_reader(reader),
      m_home(home),
      m_environment(environment),
      m_userFolders(reader, home.path()),
      m_downloads(reader, home.path())
{
}

HomeLayout::Places FreedesktopSurvey::places()
{
    readUserDirs();
    m_places.trashFolder = folderUrl(QByteArray(kHomeTrash) + "/files");
    addTrash(kHomeTrash);
    for (const char *pattern : {".var/app/*/data/Trash", "snap/*/common/.local/share/Trash",
                                "snap/*/@current/.local/share/Trash"}) {
        for (const QByteArray &trash : m_reader.foldersMatching(pattern))
            addTrash(trash);
    }
    if (m_reader.hasFolder(kCacheHome) && add(SliceKind::Cache, kCacheHome))
        m_cacheHomes.append(kCacheHome);
    for (const char *pattern : {".var/app/*/cache", "snap/*/common/.cache"})
        addFolders(SliceKind::Cache, pattern);
    addAppLogs();
    for (const QByteArray device : kUpdateFolders) {
        const QByteArray pattern = ".wine/drive_c/users/*/AppData/Roaming/Apple Computer/iTunes/" +
                                   device + " Software Updates";
        addFolders(SliceKind::OldIos, pattern.constData());
    }
    addMailDownloads();
    findBrowserData();
    addDownloads();
    if (m_userDirsAreKnown) {
        addTrashOfEnvironment();
        addCacheOfEnvironment();
    }
    addPrograms();
    addSearchFolders();
    return std::move(m_places);
}

void FreedesktopSurvey::readUserDirs()
{
    const auto text = userDirsText();
    m_userDirsAreKnown = text || text.error() == ENOENT;
    m_userDirs = UserDirs::parse(text.value_or(QByteArray()));
    for (const NamedFolder &folder : kSearched) {
        if (QByteArray(folder.variable) != kDownloads.variable)
            m_userFolders.add(folder.plainName);
    }
    m_userFolders.add(kTemplates.plainName);
    for (const QByteArray &folder : m_userDirs.allBut(kDownloads.variable, m_home.path()))
        m_userFolders.add(folder);
    m_downloads.add(kDownloads.plainName);
    if (const auto named = m_userDirs.folder(kDownloads.variable, m_home.path()))
        m_downloads.add(*named);
}

/// Many people keep such files in one folder and put links in their places. One link is followed,
/// if it does not leave the home; a link to nothing may lead to something tomorrow.
SystemResult<QByteArray> FreedesktopSurvey::userDirsText() const
{
    auto text = m_reader.contentOf(kUserDirsFile, kLargestUserDirsFile);
    if (text || text.error() != ELOOP)
        return text;
    const auto link = m_reader.linkAt(kUserDirsFile);
    const auto target =
        link ? linkTargetBelowHome(kUserDirsFile, *link, m_home.path()) : std::nullopt;
    if (!target)
        return tl::unexpected(ELOOP);
    text = m_reader.contentOf(*target, kLargestUserDirsFile);
    return text ? text : tl::unexpected(ELOOP);
}

void FreedesktopSurvey::addFolders(SliceKind kind, const char *pattern)
{
    for (const QByteArray &folder : m_reader.foldersMatching(pattern))
        add(kind, folder);
}

void FreedesktopSurvey::addAppLogs()
{
    for (const char *pattern :
         {".local/share/xorg", ".npm/_logs", ".config/*/logs", ".local/share/*/logs",
          ".local/state/*/logs", ".var/app/*/config/*/logs"}) {
        for (const QByteArray &folder : m_reader.foldersMatching(pattern)) {
            if (!mayHoldConversations(folder) && !areOfRepository(m_reader, folder))
                add(SliceKind::AppLogs, folder);
        }
    }
}

void FreedesktopSurvey::addTrash(const QByteArray &trash)
{
    for (const char *name : kTrashFolders) {
        const QByteArray folder = trash + '/' + name;
        if (m_reader.hasFolder(folder))
            add(SliceKind::Trash, folder);
    }
}

/// The folder that the user named, unless it holds more than downloads; else the plain name. While
/// the file that may name another cannot be read, the plain name may be that of anything.
void FreedesktopSurvey::addDownloads()
{
    if (!m_userDirsAreKnown)
        return;
    const auto named = m_userDirs.folder(kDownloads.variable, m_home.path());
    const QByteArray folder =
        named && mayBeDownloads(*named) ? *named : QByteArray(kDownloads.plainName);
    if (mayBeDownloads(folder) && m_reader.hasFolder(folder))
        add(SliceKind::Downloads, folder);
}

bool FreedesktopSurvey::mayBeDownloads(const QByteArray &path) const
{
    return !isAtOrInside(path, "snap") && !m_userFolders.isAtOrAroundOne(path) &&
           !touchesKnown(path);
}

void FreedesktopSurvey::addTrashOfEnvironment()
{
    const auto data = pathBelowHome(m_environment.dataHome, m_home.path());
    if (!data)
        return;
    // A folder that just happens to bear the name has no book of what was thrown away.
    const QByteArray trash = *data + "/Trash";
    if (!m_reader.hasFolder(trash + "/files") || !m_reader.hasFolder(trash + "/info"))
        return;
    if (isTheUsers(trash))
        return;
    addTrash(trash);
    m_places.trashFolder = folderUrl(trash + "/files");
}

/// A cache is emptied whole, and one that a program has for itself may hold mail or maps: the place
/// must be called just that, must not lie where some program keeps its own things nor where the
/// user keeps his, and must not hold any of those.
void FreedesktopSurvey::addCacheOfEnvironment()
{
    const auto cache = pathBelowHome(m_environment.cacheHome, m_home.path());
    if (!cache)
        return;
    const qsizetype slash = cache->lastIndexOf('/');
    const QByteArray name = cache->sliced(slash + 1);
    const bool isCalledACache = name == "cache" || name == ".cache";
    const QByteArray around = cache->first(std::max<qsizetype>(slash, 0));
    const bool isAPrograms =
        isAtOrInside(*cache, "snap") || (hasHiddenComponent(around) && around != ".local");
    if (isCalledACache && !isAPrograms && !isTheUsers(*cache) && m_reader.hasFolder(*cache) &&
        add(SliceKind::Cache, *cache))
        m_cacheHomes.append(*cache);
}

/// None twice and none inside another, or its files would be listed twice.
void FreedesktopSurvey::addSearchFolders()
{
    QByteArrayList folders;
    for (const NamedFolder &folder : kSearched) {
        const QByteArray path =
            m_userDirs.folder(folder.variable, m_home.path()).value_or(folder.plainName);
        if (!folders.contains(path))
            folders.append(path);
    }
    for (const QByteArray &folder : folders) {
        const auto isAround = [&](const QByteArray &other) { return isInside(folder, other); };
        if (std::none_of(folders.begin(), folders.end(), isAround))
            m_places.searchFolders.append(folderUrl(folder));
    }
}

bool FreedesktopSurvey::add(SliceKind kind, const QByteArray &path)
{
    if (touchesKnown(path) || m_userFolders.isAtOrAroundOne(path))
        return false;
    m_known.append(path);
    m_places.locations[indexOf(kind)].append(folderUrl(path));
    return true;
}

/// Whether the place is one of the locations, or lies in or around one.
bool FreedesktopSurvey::touchesKnown(const QByteArray &path) const
{
    return std::any_of(m_known.begin(), m_known.end(), [&](const QByteArray &known) {
        return isAtOrInside(path, known) || isInside(known, path);
    });
}

/// Whether the place holds something of the user's, or is held by it.
bool FreedesktopSurvey::isTheUsers(const QByteArray &path) const
{
    return m_userFolders.isAtOrAroundOne(path) || m_userFolders.isAtOrInOne(path) ||
           m_downloads.isAtOrAroundOne(path) || m_downloads.isAtOrInOne(path);
}

FileUrl FreedesktopSurvey::folderUrl(const QByteArray &path) const
{
    return m_home.appending(path, FileUrlKind::Folder);
}
