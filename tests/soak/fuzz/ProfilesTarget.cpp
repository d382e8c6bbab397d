#include "platform/system/HostSystemCalls.h"
#include "slices/home/BrowserProfiles.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/soak/fuzz/FuzzTargets.h"

namespace {

const QByteArray kFirefox(".mozilla/firefox");
const QByteArray kChromium(".config/chromium");

/// A home with profiles, copies of profiles, links out of it, and folders beside those of the
/// browsers.
struct HomeWithProfiles
{
    HomeWithProfiles()
    {
        home.link(".mozilla/firefox/way", home.path("Documents"));
        home.link(".config/chromium/Profile 2", home.path("Documents"));
    }

    const MadeHome home{{".mozilla/firefox/a/x", ".mozilla/firefox/a copy/x",
                         ".mozilla/firefox/Profiles/b/x", ".mozilla/firefox/file", "Documents/x",
                         ".config/chromium/Default/x", ".config/chromium/Profile 1/x",
                         ".config/chromium/School/x", ".config/chromium/Backup/x", ".config/x/x"}};
};

const MadeHome &home()
{
    static const HomeWithProfiles made;
    return made.home;
}

/// Whether the path is a real folder strictly below the one in which it was looked for.
bool isFolderBelow(const QByteArray &folder, const QByteArray &path)
{
    const std::filesystem::path whole = native(home().path(path));
    std::error_code error;
    return path.startsWith(folder + '/') && std::filesystem::is_directory(whole, error) &&
           std::filesystem::canonical(whole, error) == whole;
}

/// What a browser's list names at all: the plain names are in the text as they are.
bool isMentioned(const QByteArray &text, const QByteArray &name)
{
    return text.contains(name) || text.contains('\\');
}

} // namespace

/// The lists of the browsers name folders of that browser only, those that are there and that the
/// list mentions: no copy of a profile, and nothing behind a link.
QByteArray findingInProfiles(const QByteArray &input)
{
    home().make(kFirefox + "/profiles.ini", input);
    home().make(kChromium + "/Local State", input);
    const HomeProbe probe(hostSystemCalls(), home().access().anchoredPath(home().url())->anchor);
    for (const QByteArray &path : firefoxProfiles(probe, kFirefox)) {
        if (!isFolderBelow(kFirefox, path) ||
            !input.contains("Path=" + path.sliced(kFirefox.size() + 1)))
            return "no profile: " + path;
    }
    const QByteArrayList known{"Default", "Profile 1"};
    for (const QByteArray &path : chromiumProfiles(probe, kChromium)) {
        const QByteArray name = path.mid(kChromium.size() + 1);
        if (!isFolderBelow(kChromium, path) || (!known.contains(name) && !isMentioned(input, name)))
            return "no profile: " + path;
    }
    return {};
}
