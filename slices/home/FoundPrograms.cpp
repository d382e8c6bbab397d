#include "slices/home/FoundPrograms.h"

#include "slices/home/BrowserProfiles.h"
#include "slices/home/KnownPrograms.h"

#include <array>

namespace {

using Style = ProgramLock::Style;

constexpr std::array kChromiumFiles{"Cookies", "Network/Cookies", "History", "Web Data"};

/// Not "places.sqlite", the history: it holds the bookmarks too.
constexpr std::array kFirefoxFiles{"cookies.sqlite", "formhistory.sqlite"};

constexpr std::array kJournalEndings{"-journal", "-wal", "-shm"};

template <typename Names>
QByteArrayList databasesIn(const HomeProbe &home, const QByteArray &profile, const Names &names)
{
    QByteArrayList paths;
    for (const char *name : names) {
        const QByteArray database = profile + '/' + name;
        paths.append(database);
        for (const char *ending : kJournalEndings)
            paths.append(database + ending);
    }
    return home.filesAmong(paths);
}

/// A folder in which a program keeps profiles.
struct ProfileFolder
{
    const char *program = nullptr;
    QByteArray path;
    QByteArray cache; ///< see FoundProgram
    ProfileFiles files = ProfileFiles::Known;
    Style lock = Style::HostLink;
};
using ProfileFolders = std::vector<ProfileFolder>;

QByteArray flatpakFolder(const FlatpakEdition &flatpak)
{
    return QByteArray(".var/app/") + flatpak.id;
}

QByteArray snapFolder(const SnapEdition &snap)
{
    return QByteArray("snap/") + snap.name + "/common";
}

/// The folders that an edition of a program has for itself. They end in a slash.
struct Surroundings
{
    QByteArray home;
    QByteArray settings;
    QByteArray cache;
    Style lock = Style::HostLink;
};

void addProfiles(ProfileFolders &folders, const KnownProgram &program, const Surroundings &around)
{
    const auto add = [&](const QByteArray &path) {
        folders.push_back({program.name, path, around.cache, program.files, around.lock});
    };
    if (program.homeProfiles)
        add(around.home + program.homeProfiles);
    if (program.configProfiles)
        add(around.settings + program.configProfiles);
}

void addOutside(ProfileFolders &folders, const KnownProgram &program)
{
    addProfiles(folders, program, {{}, ".config/", program.cache, Style::HostLink});
}

void addFlatpaks(ProfileFolders &folders, const KnownProgram &program)
{
    for (const FlatpakEdition &flatpak : program.flatpaks) {
        if (!flatpak.id || flatpak.profiles == FlatpakEdition::Profiles::Unknown)
            continue;
        const QByteArray home = flatpakFolder(flatpak);
        addProfiles(folders, program,
                    {home + '/', home + "/config/", home + "/cache", Style::SandboxedHostLink});
    }
}

void addSnap(ProfileFolders &folders, const KnownProgram &program)
{
    if (!program.snap.profiles)
        return;
    const QByteArray home = snapFolder(program.snap);
    folders.push_back({program.name, home + '/' + program.snap.profiles, home + "/.cache",
                       program.snap.files, Style::SandboxedHostLink});
}

void addChannels(ProfileFolders &folders, const KnownProgram &program)
{
    for (const ProgramChannel &channel : program.channels) {
        if (channel.name)
            folders.push_back({channel.name, QByteArray(".config/") + channel.folder,
                               channel.folder, ProfileFiles::Unknown, Style::HostLink});
    }
}

/// The programs whose files are known come first, and each program's usual edition before its
/// others.
ProfileFolders profileFolders(ProgramFamily family)
{
    using Add = void (*)(ProfileFolders &, const KnownProgram &);
    ProfileFolders folders;
    const auto addAll = [&](Add add, ProfileFiles files) {
        for (const KnownProgram &program : knownPrograms()) {
            if (program.family == family && program.files == files)
                add(folders, program);
        }
    };
    for (const ProfileFiles files : {ProfileFiles::Known, ProfileFiles::Unknown}) {
        for (const Add add : {addOutside, addFlatpaks, addSnap, addChannels})
            addAll(add, files);
    }
    return folders;
}

void addChromium(std::vector<FoundProgram> &found, const HomeProbe &home,
                 const ProfileFolder &folder)
{
    if (!home.hasFolder(folder.path))
        return;
    FoundProgram program{
        QString::fromLatin1(folder.program), {folder.lock, folder.path}, {}, {folder.cache}};
    program.profiles = chromiumProfiles(home, folder.path);
    if (folder.files == ProfileFiles::Known) {
        for (const QByteArray &profile : program.profiles)
            program.files += databasesIn(home, profile, kChromiumFiles);
    }
    found.push_back(std::move(program));
}

/// A lock protects the cache also when no list of profiles names the folder that holds the lock.
void addFirefox(std::vector<FoundProgram> &found, const HomeProbe &home,
                const ProfileFolder &folder)
{
    const QByteArrayList profiles = firefoxProfiles(home, folder.path);
    QByteArrayList places = home.foldersMatching(folder.path + "/*");
    for (const QByteArray &profile : profiles) {
        if (!places.contains(profile))
            places.append(profile);
    }
    for (const QByteArray &place : places) {
        FoundProgram program{QString::fromLatin1(folder.program),
                             {Style::ParentLock, place},
                             {},
                             {folder.cache},
                             {place}};
        if (folder.files == ProfileFiles::Known && profiles.contains(place))
            program.files = databasesIn(home, place, kFirefoxFiles);
        found.push_back(std::move(program));
    }
}

QByteArrayList outsideCaches(const KnownProgram &program)
{
    QByteArrayList caches{program.cache};
    for (const ProgramChannel &channel : program.channels) {
        if (channel.name)
            caches.append(channel.folder);
    }
    return caches;
}

QByteArrayList sandboxCaches(const KnownProgram &program)
{
    QByteArrayList caches;
    for (const FlatpakEdition &flatpak : program.flatpaks) {
        if (flatpak.id)
            caches.append(flatpakFolder(flatpak) + "/cache");
    }
    if (program.snap.name)
        caches.append(snapFolder(program.snap) + "/.cache");
    return caches;
}

/// A program with a lock is recognised by its processes too: its profile may be behind a link, may
/// be named on its command line, or may not exist yet.
void addByProcesses(std::vector<FoundProgram> &found, const KnownProgram &program)
{
    const auto add = [&](const auto &processes, const QByteArrayList &caches) {
        for (const char *process : processes) {
            if (process)
                found.push_back(
                    {QString::fromLatin1(program.name), {Style::ProcessName, process}, {}, caches});
        }
    };
    add(program.processes, outsideCaches(program) + sandboxCaches(program));
    add(program.sandboxProcesses, sandboxCaches(program));
}

} // namespace

std::vector<FoundProgram> findPrograms(const HomeProbe &home)
{
    std::vector<FoundProgram> found;
    for (const ProfileFolder &folder : profileFolders(ProgramFamily::Chromium))
        addChromium(found, home, folder);
    for (const ProfileFolder &folder : profileFolders(ProgramFamily::Firefox))
        addFirefox(found, home, folder);
    for (const KnownProgram &program : knownPrograms())
        addByProcesses(found, program);
    return found;
}

QByteArray databaseOfJournal(const QByteArray &name)
{
    for (const QByteArrayView ending : kJournalEndings) {
        if (name.endsWith(ending))
            return name.chopped(ending.size());
    }
    return {};
}
