#include "slices/home/FreedesktopSurvey.h"

#include "slices/home/ChatLogs.h"
#include "slices/home/KnownPrograms.h"
#include "slices/home/PlacesOutOfReach.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

constexpr auto kUserDirsFile = ".config/user-dirs.dirs";
constexpr std::size_t kLargestUserDirsFile = std::size_t{64} * 1024;

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

/// In the order in which large files are searched. A folder without a variable has only its plain
/// name.
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

/// Where programs from a store keep their files, downloads too.
constexpr auto kSandboxes = "snap";

/// Whether these logs are a repository's, such as a repository of the user's dot files with its
/// work tree elsewhere. They tell what was in it before.
bool areOfRepository(const HomeProbe &reader, const QByteArray &logs)
{
    const QByteArray head = logs.first(logs.lastIndexOf('/') + 1) + "HEAD";
    return !reader.filesAmong({head}).isEmpty() || reader.linkAt(head);
}

} // namespace

FreedesktopSurvey::FreedesktopSurvey(const HomeProbe &reader, const HomePaths &paths, FileUrl home,
                                     HomeEnvironment environment)
    : m_reader(reader),
      m_paths(paths),
      m_home(std::move(home)),
      m_environment(std::move(environment)),
      m_userFolders(reader, paths),
      m_downloads(reader, paths)
{
}

HomeLayout::Findings FreedesktopSurvey::findings()
{
    readUserDirs();
    m_findings.trashFolder = folderUrl(QByteArray(kHomeTrash) + "/files");
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
    findBrowserData();
    addAppLogs();
    for (const QByteArray device : kUpdateFolders) {
        const QByteArray pattern = ".wine/drive_c/users/*/AppData/Roaming/Apple Computer/iTunes/" +
                                   device + " Software Updates";
        addFolders(SliceKind::OldIos, pattern.constData());
    }
    addMailDownloads();
    addDownloads();
    if (m_userDirsAreKnown) {
        addTrashOfEnvironment();
        addCacheOfEnvironment();
    }
    addPrograms();
    addSearchFolders();
    addPlacesOutOfReach();
    return std::move(m_findings);
}

void FreedesktopSurvey::readUserDirs()
{
    const auto text = userDirsText();
    m_userDirs = UserDirs::parse(text.value_or(QByteArray()));
    m_userDirsAreKnown =
        (text || text.error() == ENOENT) && !m_userDirs.isUnclearBut(kDownloads.variable);
    const QByteArray home = m_home.path() + '/';
    for (const NamedFolder &folder : kSearched) {
        if (QByteArray(folder.variable) != kDownloads.variable)
            m_userFolders.add(home + folder.plainName);
    }
    m_userFolders.add(home + kTemplates.plainName);
    for (const QByteArray &path : m_userDirs.allBut(kDownloads.variable, m_home.path()))
        m_userFolders.add(path);
    m_downloads.add(home + kDownloads.plainName);
    if (const auto path = m_userDirs.path(kDownloads.variable, m_home.path()))
        addNamedDownloads(*path);
}

/// Protects the user's downloads in folders where programs keep their own files: they are not taken
/// for those.
void FreedesktopSurvey::addNamedDownloads(const QByteArray &path)
{
    const QByteArrayList paths = m_paths.followed(path);
    const bool isHidden = std::any_of(paths.begin(), paths.end(), hasHiddenComponent);
    (isHidden ? m_userFolders : m_downloads).add(path);
}

/// Many people keep such files in one folder and put links to them where the files belong. A link
/// to nothing may lead to something tomorrow.
SystemResult<QByteArray> FreedesktopSurvey::userDirsText() const
{
    const QByteArrayList paths = m_paths.followed(m_home.path() + '/' + kUserDirsFile);
    if (paths.isEmpty())
        return tl::unexpected(ENOTDIR);
    const auto text = m_reader.contentOf(paths.constLast(), kLargestUserDirsFile);
    const bool isALink = paths.size() > 1;
    return text || !isALink ? text : tl::unexpected(ELOOP);
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
            if (!isChatLogFolder(folder) && !areOfRepository(m_reader, folder))
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

/// While it is unknown where the user keeps what, a folder of the plain name may hold anything.
void FreedesktopSurvey::addDownloads()
{
    if (!m_userDirsAreKnown)
        return;
    const auto folder = downloadsFolder();
    if (folder && mayBeDownloads(*folder) && m_reader.hasFolder(*folder))
        add(SliceKind::Downloads, *folder);
}

/// The folder that the user named. The plain name counts only when the user named no folder below
/// the home. It does not replace a named folder that holds more than downloads.
std::optional<QByteArray> FreedesktopSurvey::downloadsFolder() const
{
    const auto path = m_userDirs.path(kDownloads.variable, m_home.path());
    if (!path || m_paths.followed(*path).isEmpty())
        return kDownloads.plainName;
    return m_paths.below(*path);
}

bool FreedesktopSurvey::mayBeDownloads(const QByteArray &path) const
{
    const bool isAPrograms =
        FolderIdentity::at(m_reader, path).isAtOrIn(FolderIdentity::at(m_reader, kSandboxes));
    return !isAPrograms && !hasHiddenComponent(path) && !m_userFolders.isAtOrAroundOne(path) &&
           !touchesKnown(path);
}

void FreedesktopSurvey::addTrashOfEnvironment()
{
    const auto data = m_paths.below(m_environment.dataHome);
    if (!data)
        return;
    // A folder that only happens to have the name has no folder of trash info files.
    const QByteArray trash = *data + "/Trash";
    if (!m_reader.hasFolder(trash + "/files") || !m_reader.hasFolder(trash + "/info"))
        return;
    if (isTheUsers(trash))
        return;
    addTrash(trash);
    m_findings.trashFolder = folderUrl(trash + "/files");
}

/// A cache is emptied as a whole, and the cache of a single program may hold mail or maps. So the
/// location must look like a cache of all programs, must not lie where the user keeps files, and
/// must not hold any of those.
void FreedesktopSurvey::addCacheOfEnvironment()
{
    const auto cache = m_paths.below(m_environment.cacheHome);
    if (cache && isCacheOfAllPrograms(*cache) && !isTheUsers(*cache) &&
        m_reader.hasFolder(*cache) && add(SliceKind::Cache, *cache))
        m_cacheHomes.append(*cache);
}

/// Its name is exactly that of the common cache, and it does not lie where a program keeps its own
/// files; or it holds the desktop's font cache, which all programs share.
bool FreedesktopSurvey::isCacheOfAllPrograms(const QByteArray &path) const
{
    const qsizetype slash = path.lastIndexOf('/');
    const QByteArray name = path.sliced(slash + 1);
    const QByteArray around = path.first(std::max<qsizetype>(slash, 0));
    if (isAtOrInside(path, kSandboxes))
        return false;
    if (!m_reader.filesAmong({path + "/fontconfig/CACHEDIR.TAG"}).isEmpty())
        return name.toLower().contains("cache");
    const bool isAPrograms = hasHiddenComponent(around) && around != ".local";
    return !isAPrograms && (name == "cache" || name == ".cache");
}

/// Adds no folder twice and none inside another: its files would be listed twice.
void FreedesktopSurvey::addSearchFolders()
{
    std::vector<FolderIdentity> folders;
    for (const NamedFolder &folder : kSearched) {
        const auto wanted =
            FolderIdentity::at(m_reader, named(folder.variable).value_or(folder.plainName));
        const auto isThere = [&](const FolderIdentity &other) { return wanted.isAtOrIn(other); };
        if (std::ranges::any_of(folders, isThere))
            continue;
        std::erase_if(folders, [&](const FolderIdentity &other) { return other.isAtOrIn(wanted); });
        folders.push_back(wanted);
    }
    for (const FolderIdentity &folder : folders)
        m_findings.searchFolders.append(folderUrl(folder.path));
}

/// While it is unknown where the user keeps what, folders that the user has may be missing in these
/// slices, and in the search for large files.
void FreedesktopSurvey::addPlacesOutOfReach()
{
    const QByteArray downloads = downloadsFolder().value_or(QByteArray());
    const QByteArray cache = m_paths.below(m_environment.cacheHome).value_or(QByteArray());
    PlacesOutOfReach &found = m_findings.outOfReach;
    found = findPlacesOutOfReach(m_reader, {downloads, cache});
    if (m_userDirsAreKnown)
        return;
    found[indexOf(SliceKind::Downloads)] = {};
    for (const SliceKind kind :
         {SliceKind::Trash, SliceKind::LargeFiles, SliceKind::Cache, SliceKind::Downloads})
        found[indexOf(kind)].append({kUserDirsFile, Obstacle::UnclearUserDirs});
}

/// The folder that the file names, if it is one for a user's own files.
std::optional<QByteArray> FreedesktopSurvey::named(const char *variable) const
{
    const auto path = m_userDirs.path(variable, m_home.path());
    const auto folder = path ? m_paths.below(*path) : std::nullopt;
    return folder && !hasHiddenComponent(*folder) ? folder : std::nullopt;
}

bool FreedesktopSurvey::add(SliceKind kind, const QByteArray &path)
{
    if (touchesKnown(path) || m_userFolders.isAtOrAroundOne(path))
        return false;
    m_known.push_back(FolderIdentity::at(m_reader, path));
    m_findings.locations[indexOf(kind)].append(folderUrl(path));
    return true;
}

/// Whether the path is one of the locations, or lies in or around one.
bool FreedesktopSurvey::touchesKnown(const QByteArray &path) const
{
    const FolderIdentity folder = FolderIdentity::at(m_reader, path);
    return std::ranges::any_of(m_known, [&](const FolderIdentity &known) {
        return folder.isAtOrIn(known) || known.isAtOrIn(folder);
    });
}

/// Whether the folder at the path holds something of the user's, or lies in it.
bool FreedesktopSurvey::isTheUsers(const QByteArray &path) const
{
    return m_userFolders.isAtOrAroundOne(path) || m_userFolders.isAtOrInOne(path) ||
           m_downloads.isAtOrAroundOne(path) || m_downloads.isAtOrInOne(path);
}

FileUrl FreedesktopSurvey::folderUrl(const QByteArray &path) const
{
    return m_home.appending(path, FileUrlKind::Folder);
}

void FreedesktopSurvey::addMailDownloads()
{
    for (const KnownMailProgram &program : knownMailPrograms()) {
        const char *folder = program.attachments;
        if (!m_reader.hasFolder(folder) || !add(SliceKind::MailDownloads, folder))
            continue;
        m_findings.programs.push_back({QString::fromLatin1(program.name),
                                       {ProgramLock::Style::ProcessName, program.process},
                                       {folderUrl(folder)}});
    }
}

/// A profile may have any name, such as "logs": its content belongs to no other slice.
void FreedesktopSurvey::findBrowserData()
{
    m_found = findPrograms(m_reader);
    FileUrls &all = m_findings.locations[indexOf(SliceKind::BrowserData)];
    for (const FoundProgram &found : m_found) {
        for (const QByteArray &profile : found.profiles)
            m_known.push_back(FolderIdentity::at(m_reader, profile));
        for (const QByteArray &path : found.files)
            all.append(m_home.appending(path, FileUrlKind::File));
    }
}

/// Adds the locations that programs may use, once all locations are known.
void FreedesktopSurvey::addPrograms()
{
    for (const FoundProgram &found : m_found) {
        const FileUrls locations = locationsOf(found);
        if (!locations.isEmpty())
            m_findings.programs.push_back({found.program, found.lock, locations});
    }
}

FileUrls FreedesktopSurvey::locationsOf(const FoundProgram &found) const
{
    FileUrls locations;
    for (const QByteArray &path : found.files)
        locations.append(m_home.appending(path, FileUrlKind::File));
    for (const QByteArray &cache : found.caches)
        locations += cacheLocations(cache);
    return locations;
}

/// A cache of the program's own counts only when it is one of the locations.
FileUrls FreedesktopSurvey::cacheLocations(const QByteArray &cache) const
{
    FileUrls locations;
    if (cache.contains('/')) {
        if (m_findings.locations[indexOf(SliceKind::Cache)].contains(folderUrl(cache)))
            locations.append(folderUrl(cache));
        return locations;
    }
    for (const QByteArray &home : m_cacheHomes)
        locations.append(folderUrl(home + '/' + cache));
    return locations;
}
