#include "slices/BrowserFiles.h"

#include <array>

namespace {

/// A browser of the Chromium family: where it keeps its profiles below a folder for settings.
struct ChromiumBrowser
{
    const char *name;
    const char *folder;  ///< in ".config", and in its sandbox's own
    const char *sandbox; ///< in ".var/app"
};

constexpr std::array kChromiumBrowsers{
    ChromiumBrowser{"Chrome", "google-chrome", "com.google.Chrome"},
    ChromiumBrowser{"Chromium", "chromium", "org.chromium.Chromium"},
    ChromiumBrowser{"Brave", "BraveSoftware/Brave-Browser", "com.brave.Browser"},
    ChromiumBrowser{"Edge", "microsoft-edge", "com.microsoft.Edge"},
    ChromiumBrowser{"Vivaldi", "vivaldi", "com.vivaldi.Vivaldi"},
};

constexpr std::array kChromiumFiles{"Cookies", "Network/Cookies", "History", "Web Data"};

struct FirefoxFolder
{
    const char *profiles;
    const char *cache;
};
/// Plain, sandboxed one way, sandboxed the other way.
constexpr std::array kFirefoxFolders{
    FirefoxFolder{".mozilla/firefox", ".cache/mozilla"},
    FirefoxFolder{".var/app/org.mozilla.firefox/.mozilla/firefox",
                  ".var/app/org.mozilla.firefox/cache"},
    FirefoxFolder{"snap/firefox/common/.mozilla/firefox", "snap/firefox/common/.cache"},
};

/// Not "places.sqlite", the history: it holds the bookmarks too.
constexpr std::array kFirefoxFiles{"cookies.sqlite", "formhistory.sqlite"};

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

/// One lock guards all profiles of such a browser.
void addChromium(std::vector<FoundProgram> &found, const HomeReader &home, const char *name,
                 const QByteArray &folder, ProgramLock::Style style, const QByteArray &cache)
{
    FoundProgram program{QString::fromLatin1(name), {style, folder}, {}, cache};
    for (const QByteArray &profile : home.foldersMatching(folder + "/*")) {
        if (isChromiumProfile(profile))
            program.paths += databasesIn(home, profile, kChromiumFiles);
    }
    if (!program.paths.isEmpty())
        found.push_back(std::move(program));
}

/// Each profile has a lock of its own.
void addFirefox(std::vector<FoundProgram> &found, const HomeReader &home,
                const FirefoxFolder &folder)
{
    for (const QByteArray &profile : home.foldersMatching(QByteArray(folder.profiles) + "/*")) {
        const QByteArrayList paths = databasesIn(home, profile, kFirefoxFiles);
        if (!paths.isEmpty())
            found.push_back({QStringLiteral("Firefox"),
                             {ProgramLock::Style::ParentLock, profile},
                             paths,
                             folder.cache});
    }
}

} // namespace

std::vector<FoundProgram> browserFiles(const HomeReader &home)
{
    std::vector<FoundProgram> found;
    for (const ChromiumBrowser &browser : kChromiumBrowsers) {
        addChromium(found, home, browser.name, QByteArray(".config/") + browser.folder,
                    ProgramLock::Style::HostLink, QByteArray(".cache/") + browser.folder);
        addChromium(found, home, browser.name,
                    QByteArray(".var/app/") + browser.sandbox + "/config/" + browser.folder,
                    ProgramLock::Style::SandboxedHostLink,
                    QByteArray(".var/app/") + browser.sandbox + "/cache");
    }
    for (const FirefoxFolder &folder : kFirefoxFolders)
        addFirefox(found, home, folder);
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
