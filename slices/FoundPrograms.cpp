#include "slices/FoundPrograms.h"

#include <algorithm>
#include <array>

namespace {

using Style = ProgramLock::Style;

/// What is known of the files of a browser's profiles.
enum class Files { Known, Unknown };

/// A place where a browser of the Chromium family keeps its profiles, all under one lock.
struct ChromiumFolder
{
    const char *program;
    const char *profiles;
    const char *cache;
    Files files = Files::Known;
    Style lock = Style::HostLink;
};

constexpr std::array kChromiumFolders{
    ChromiumFolder{"Chrome", ".config/google-chrome", ".cache/google-chrome"},
    ChromiumFolder{"Chromium", ".config/chromium", ".cache/chromium"},
    ChromiumFolder{"Brave", ".config/BraveSoftware/Brave-Browser",
                   ".cache/BraveSoftware/Brave-Browser"},
    ChromiumFolder{"Edge", ".config/microsoft-edge", ".cache/microsoft-edge"},
    ChromiumFolder{"Vivaldi", ".config/vivaldi", ".cache/vivaldi"},
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
    ChromiumFolder{"Chrome Beta", ".config/google-chrome-beta", ".cache/google-chrome-beta",
                   Files::Unknown},
    ChromiumFolder{"Chrome Dev", ".config/google-chrome-unstable", ".cache/google-chrome-unstable",
                   Files::Unknown},
    ChromiumFolder{"Brave Beta", ".config/BraveSoftware/Brave-Browser-Beta",
                   ".cache/BraveSoftware/Brave-Browser-Beta", Files::Unknown},
    ChromiumFolder{"Edge Beta", ".config/microsoft-edge-beta", ".cache/microsoft-edge-beta",
                   Files::Unknown},
    ChromiumFolder{"Edge Dev", ".config/microsoft-edge-dev", ".cache/microsoft-edge-dev",
                   Files::Unknown},
    ChromiumFolder{"Vivaldi Snapshot", ".config/vivaldi-snapshot", ".cache/vivaldi-snapshot",
                   Files::Unknown},
    ChromiumFolder{"Opera", ".config/opera", ".cache/opera", Files::Unknown},
};

constexpr std::array kChromiumFiles{"Cookies", "Network/Cookies", "History", "Web Data"};

/// A place where a program of the Firefox family keeps its profiles, each under a lock of its own.
struct FirefoxFolder
{
    const char *program;
    const char *profiles;
    const char *cache;
    Files files = Files::Known;
};

constexpr std::array kFirefoxFolders{
    FirefoxFolder{"Firefox", ".mozilla/firefox", ".cache/mozilla"},
    FirefoxFolder{"Firefox", ".var/app/org.mozilla.firefox/.mozilla/firefox",
                  ".var/app/org.mozilla.firefox/cache"},
    FirefoxFolder{"Firefox", "snap/firefox/common/.mozilla/firefox", "snap/firefox/common/.cache"},
    FirefoxFolder{"Firefox", ".config/mozilla/firefox", ".cache/mozilla", Files::Unknown},
    FirefoxFolder{"LibreWolf", ".librewolf", ".cache/librewolf", Files::Unknown},
    FirefoxFolder{"Thunderbird", ".thunderbird", ".cache/thunderbird", Files::Unknown},
    FirefoxFolder{"Thunderbird", ".var/app/org.mozilla.Thunderbird/.thunderbird",
                  ".var/app/org.mozilla.Thunderbird/cache", Files::Unknown},
    FirefoxFolder{"Thunderbird", ".var/app/org.mozilla.thunderbird/.thunderbird",
                  ".var/app/org.mozilla.thunderbird/cache", Files::Unknown},
    FirefoxFolder{"Thunderbird", "snap/thunderbird/common/.thunderbird",
                  "snap/thunderbird/common/.cache", Files::Unknown},
};

/// Not "places.sqlite", the history: it holds the bookmarks too.
constexpr std::array kFirefoxFiles{"cookies.sqlite", "formhistory.sqlite"};

/// A program known by its cache: one without a lock, or whose lock may be elsewhere, because the
/// profiles are behind a link or were named when it was started.
struct CacheFolder
{
    const char *program;
    const char *process;
    const char *cache;
};

constexpr std::array kCacheFolders{
    CacheFolder{"Firefox", "firefox", ".cache/mozilla"},
    CacheFolder{"Firefox", "firefox-bin", ".cache/mozilla"},
    CacheFolder{"Firefox", "firefox-esr", ".cache/mozilla"},
    CacheFolder{"Chrome", "chrome", ".cache/google-chrome"},
    CacheFolder{"Chromium", "chromium", ".cache/chromium"},
    CacheFolder{"Brave", "brave", ".cache/BraveSoftware"},
    CacheFolder{"Edge", "msedge", ".cache/microsoft-edge"},
    CacheFolder{"Vivaldi", "vivaldi-bin", ".cache/vivaldi"},
    CacheFolder{"Opera", "opera", ".cache/opera"},
    CacheFolder{"Thunderbird", "thunderbird", ".cache/thunderbird"},
    CacheFolder{"Thunderbird", "thunderbird-bin", ".cache/thunderbird"},
    CacheFolder{"Thunderbird", "thunderbird-esr", ".cache/thunderbird"},
    CacheFolder{"Evolution", "evolution", ".cache/evolution"},
    CacheFolder{"Evolution", "evolution", ".var/app/org.gnome.Evolution/cache"},
    CacheFolder{"Geary", "geary", ".cache/geary"},
    CacheFolder{"Geary", "geary", ".var/app/org.gnome.Geary/cache"},
    CacheFolder{"GNOME Web", "epiphany", ".cache/epiphany"},
    CacheFolder{"GNOME Web", "epiphany", ".var/app/org.gnome.Epiphany/cache"},
};

constexpr std::array kJournalEndings{"-journal", "-wal", "-shm"};

template <typename Names>
QByteArrayList databasesIn(const HomeReader &home, const QByteArray &profile, const Names &names)
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

bool isChromiumProfile(const QByteArray &path)
{
    const QByteArray name = path.sliced(path.lastIndexOf('/') + 1);
    return name == "Default" || name.startsWith("Profile ");
}

void addChromium(std::vector<FoundProgram> &found, const HomeReader &home,
                 const ChromiumFolder &folder)
{
    if (!home.hasFolder(folder.profiles))
        return;
    FoundProgram program{
        QString::fromLatin1(folder.program), {folder.lock, folder.profiles}, {}, folder.cache};
    if (folder.files == Files::Known) {
        for (const QByteArray &profile : home.foldersMatching(QByteArray(folder.profiles) + "/*")) {
            if (isChromiumProfile(profile))
                program.files += databasesIn(home, profile, kChromiumFiles);
        }
    }
    found.push_back(std::move(program));
}

/// Among the profiles lie folders of other kinds, in which neither files nor a lock are found.
void addFirefox(std::vector<FoundProgram> &found, const HomeReader &home,
                const FirefoxFolder &folder)
{
    for (const QByteArray &profile : home.foldersMatching(QByteArray(folder.profiles) + "/*")) {
        FoundProgram program{
            QString::fromLatin1(folder.program), {Style::ParentLock, profile}, {}, folder.cache};
        if (folder.files == Files::Known)
            program.files = databasesIn(home, profile, kFirefoxFiles);
        found.push_back(std::move(program));
    }
}

void addByCache(std::vector<FoundProgram> &found, const HomeReader &home, const CacheFolder &folder)
{
    if (home.hasFolder(folder.cache))
        found.push_back({QString::fromLatin1(folder.program),
                         {Style::ProcessName, folder.process},
                         {},
                         folder.cache});
}

} // namespace

std::vector<FoundProgram> findPrograms(const HomeReader &home)
{
    std::vector<FoundProgram> found;
    for (const ChromiumFolder &folder : kChromiumFolders)
        addChromium(found, home, folder);
    for (const FirefoxFolder &folder : kFirefoxFolders)
        addFirefox(found, home, folder);
    for (const CacheFolder &folder : kCacheFolders)
        addByCache(found, home, folder);
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
