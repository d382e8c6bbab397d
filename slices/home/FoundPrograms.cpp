#include "slices/home/FoundPrograms.h"

#include "slices/home/BrowserProfiles.h"

#include <array>

namespace {

using Style = ProgramLock::Style;

/// What is known of the files of a browser's profiles.
enum class Files { Known, Unknown };

/// A place where a browser of the Chromium family keeps its profiles, all under one lock.
struct ChromiumFolder
{
    const char *program = nullptr;
    const char *profiles = nullptr;
    const char *cache = nullptr; ///< see FoundProgram
    Files files = Files::Known;
    Style lock = Style::HostLink;
};

constexpr std::array kChromiumFolders{
    ChromiumFolder{"Chrome", ".config/google-chrome", "google-chrome"},
    ChromiumFolder{"Chromium", ".config/chromium", "chromium"},
    ChromiumFolder{"Brave", ".config/BraveSoftware/Brave-Browser", "BraveSoftware"},
    ChromiumFolder{"Edge", ".config/microsoft-edge", "microsoft-edge"},
    ChromiumFolder{"Vivaldi", ".config/vivaldi", "vivaldi"},
    ChromiumFolder{"Chrome", ".var/app/com.google.Chrome/config/google-chrome",
                   ".var/app/com.google.Chrome/cache", Files::Known, Style::SandboxedHostLink},
    ChromiumFolder{"Chromium", ".var/app/org.chromium.Chromium/config/chromium",
                   ".var/app/org.chromium.Chromium/cache", Files::Known, Style::SandboxedHostLink},
    ChromiumFolder{"Brave", ".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser",
                   ".var/app/com.brave.Browser/cache", Files::Known, Style::SandboxedHostLink},
    ChromiumFolder{"Edge", ".var/app/com.microsoft.Edge/config/microsoft-edge",
                   ".var/app/com.microsoft.Edge/cache", Files::Known, Style::SandboxedHostLink},
    ChromiumFolder{"Vivaldi", ".var/app/com.vivaldi.Vivaldi/config/vivaldi",
                   ".var/app/com.vivaldi.Vivaldi/cache", Files::Known, Style::SandboxedHostLink},
    ChromiumFolder{"Chromium", "snap/chromium/common/chromium", "snap/chromium/common/.cache",
                   Files::Unknown, Style::SandboxedHostLink},
    ChromiumFolder{"Chrome Beta", ".config/google-chrome-beta", "google-chrome-beta",
                   Files::Unknown},
    ChromiumFolder{"Chrome Dev", ".config/google-chrome-unstable", "google-chrome-unstable",
                   Files::Unknown},
    ChromiumFolder{"Edge Beta", ".config/microsoft-edge-beta", "microsoft-edge-beta",
                   Files::Unknown},
    ChromiumFolder{"Edge Dev", ".config/microsoft-edge-dev", "microsoft-edge-dev", Files::Unknown},
    ChromiumFolder{"Vivaldi Snapshot", ".config/vivaldi-snapshot", "vivaldi-snapshot",
                   Files::Unknown},
    ChromiumFolder{"Opera", ".config/opera", "opera", Files::Unknown},
};

constexpr std::array kChromiumFiles{"Cookies", "Network/Cookies", "History", "Web Data"};

/// A place where a program of the Firefox family keeps its profiles, each under a lock of its own.
struct FirefoxFolder
{
    const char *program = nullptr;
    const char *profiles = nullptr;
    const char *cache = nullptr;
    Files files = Files::Known;
};

constexpr std::array kFirefoxFolders{
    FirefoxFolder{"Firefox", ".mozilla/firefox", "mozilla"},
    FirefoxFolder{"Firefox", ".config/mozilla/firefox", "mozilla"},
    FirefoxFolder{"Firefox", ".var/app/org.mozilla.firefox/.mozilla/firefox",
                  ".var/app/org.mozilla.firefox/cache"},
    FirefoxFolder{"Firefox", ".var/app/org.mozilla.firefox/config/mozilla/firefox",
                  ".var/app/org.mozilla.firefox/cache"},
    FirefoxFolder{"Firefox", "snap/firefox/common/.mozilla/firefox", "snap/firefox/common/.cache"},
    FirefoxFolder{"LibreWolf", ".librewolf", "librewolf", Files::Unknown},
    FirefoxFolder{"Thunderbird", ".thunderbird", "thunderbird", Files::Unknown},
    FirefoxFolder{"Thunderbird", ".var/app/org.mozilla.Thunderbird/.thunderbird",
                  ".var/app/org.mozilla.Thunderbird/cache", Files::Unknown},
    FirefoxFolder{"Thunderbird", ".var/app/org.mozilla.thunderbird/.thunderbird",
                  ".var/app/org.mozilla.thunderbird/cache", Files::Unknown},
    FirefoxFolder{"Thunderbird", "snap/thunderbird/common/.thunderbird",
                  "snap/thunderbird/common/.cache", Files::Unknown},
};

/// Not "places.sqlite", the history: it holds the bookmarks too.
constexpr std::array kFirefoxFiles{"cookies.sqlite", "formhistory.sqlite"};

/// A program that is known by its processes, by their whole names. Also one with a lock is: its
/// profile may be behind a link, or named when it was started, or not there yet.
struct Processes
{
    static constexpr std::size_t kMostNames = 4;
    static constexpr std::size_t kMostCaches = 5;

    const char *program = nullptr;
    std::array<const char *, kMostNames> names{};
    std::array<const char *, kMostCaches> caches{};
};

constexpr std::array kProcesses{
    Processes{"Firefox",
              {"firefox", "firefox-bin", "firefox-esr"},
              {"mozilla", ".var/app/org.mozilla.firefox/cache", "snap/firefox/common/.cache"}},
    Processes{"LibreWolf",
              {"librewolf", "librewolf-bin"},
              {"librewolf", ".var/app/io.gitlab.librewolf-community/cache"}},
    Processes{"Chrome",
              {"chrome"},
              {"google-chrome", "google-chrome-beta", "google-chrome-unstable",
               ".var/app/com.google.Chrome/cache", ".var/app/com.google.ChromeDev/cache"}},
    Processes{"Chromium",
              {"chromium", "chromium-browser"},
              {"chromium", ".var/app/org.chromium.Chromium/cache",
               ".var/app/io.github.ungoogled_software.ungoogled_chromium/cache",
               "snap/chromium/common/.cache"}},
    // In a sandbox it goes by the name of the other; outside, its lock tells of it under any.
    Processes{"Chromium",
              {"chrome"},
              {".var/app/org.chromium.Chromium/cache",
               ".var/app/io.github.ungoogled_software.ungoogled_chromium/cache",
               "snap/chromium/common/.cache"}},
    Processes{"Brave",
              {"brave"},
              {"BraveSoftware", ".var/app/com.brave.Browser/cache", "snap/brave/common/.cache"}},
    Processes{"Edge",
              {"msedge"},
              {"microsoft-edge", "microsoft-edge-beta", "microsoft-edge-dev",
               ".var/app/com.microsoft.Edge/cache", ".var/app/com.microsoft.EdgeDev/cache"}},
    Processes{"Vivaldi",
              {"vivaldi-bin"},
              {"vivaldi", "vivaldi-snapshot", ".var/app/com.vivaldi.Vivaldi/cache",
               "snap/vivaldi/common/.cache"}},
    Processes{"Opera",
              {"opera"},
              {"opera", ".var/app/com.opera.Opera/cache", "snap/opera/common/.cache"}},
    Processes{"GNOME Web",
              {"epiphany", "epiphany-browser"},
              {"epiphany", ".var/app/org.gnome.Epiphany/cache"}},
    Processes{"Falkon", {"falkon"}, {"falkon", ".var/app/org.kde.falkon/cache"}},
    Processes{"Konqueror", {"konqueror"}, {"konqueror"}},
    Processes{"qutebrowser",
              {"qutebrowser"},
              {"qutebrowser", ".var/app/org.qutebrowser.qutebrowser/cache"}},
    Processes{"Thunderbird",
              {"thunderbird", "thunderbird-bin", "thunderbird-esr"},
              {"thunderbird", ".var/app/org.mozilla.Thunderbird/cache",
               ".var/app/org.mozilla.thunderbird/cache", "snap/thunderbird/common/.cache"}},
    // Its services run in every session of GNOME, and have the mail and the calendars that are kept
    // for use without a network open there.
    Processes{"Evolution",
              {"evolution", "evolution-source-registry", "evolution-calendar-factory",
               "evolution-addressbook-factory"},
              {"evolution", ".var/app/org.gnome.Evolution/cache"}},
    Processes{"Geary", {"geary"}, {"geary", ".var/app/org.gnome.Geary/cache"}},
    Processes{"KMail", {"kmail", "kontact"}, {"kmail2", ".var/app/org.kde.kontact/cache"}},
};

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

void addChromium(std::vector<FoundProgram> &found, const HomeProbe &home,
                 const ChromiumFolder &folder)
{
    if (!home.hasFolder(folder.profiles))
        return;
    FoundProgram program{
        QString::fromLatin1(folder.program), {folder.lock, folder.profiles}, {}, {folder.cache}};
    program.profiles = chromiumProfiles(home, folder.profiles);
    if (folder.files == Files::Known) {
        for (const QByteArray &profile : program.profiles)
            program.files += databasesIn(home, profile, kChromiumFiles);
    }
    found.push_back(std::move(program));
}

/// A lock keeps the cache also where it is found in a folder that no list of profiles names.
void addFirefox(std::vector<FoundProgram> &found, const HomeProbe &home,
                const FirefoxFolder &folder)
{
    const QByteArrayList profiles = firefoxProfiles(home, folder.profiles);
    QByteArrayList places = home.foldersMatching(QByteArray(folder.profiles) + "/*");
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
        if (folder.files == Files::Known && profiles.contains(place))
            program.files = databasesIn(home, place, kFirefoxFiles);
        found.push_back(std::move(program));
    }
}

void addByProcesses(std::vector<FoundProgram> &found, const Processes &processes)
{
    FoundProgram program{QString::fromLatin1(processes.program), {}, {}, {}};
    for (const char *cache : processes.caches) {
        if (cache)
            program.caches.append(cache);
    }
    for (const char *name : processes.names) {
        program.lock = {Style::ProcessName, name};
        if (name)
            found.push_back(program);
    }
}

} // namespace

std::vector<FoundProgram> findPrograms(const HomeProbe &home)
{
    std::vector<FoundProgram> found;
    for (const ChromiumFolder &folder : kChromiumFolders)
        addChromium(found, home, folder);
    for (const FirefoxFolder &folder : kFirefoxFolders)
        addFirefox(found, home, folder);
    for (const Processes &processes : kProcesses)
        addByProcesses(found, processes);
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
