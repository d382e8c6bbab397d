#include "slices/home/HomeSurvey.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/soak/fuzz/FuzzTargets.h"

namespace {

/// What parts an input: the three files of the home, one behind the other.
constexpr auto kBorder = "\n----\n";

/// A plain desktop with links out of the home, and folders outside that are named like its own.
struct DescribedHome
{
    DescribedHome()
    {
        for (const QByteArray name : {"Downloads", ".cache", "Documents"})
            makeFile(home.outside(name + "/x"));
        home.link("Loads", home.outside("Downloads"));
        home.link("Home", home.path());
    }

    const MadeHome home{kPlainHome + QByteArrayList{"Documents/letters/x", "Pictures/x", ".ssh/key",
                                                    ".config/chromium/Default/Cookies",
                                                    ".mozilla/firefox/a/cookies.sqlite"}};
};

const MadeHome &home()
{
    static const DescribedHome made;
    return made.home;
}

bool isOfTheHome(const FileUrl &location)
{
    const QByteArray path = location.path();
    std::error_code error;
    return path.startsWith(home().path() + '/') &&
           std::filesystem::canonical(native(path), error) == native(path);
}

/// The texts of the three files; what is missing is empty.
QByteArrayList partsOf(QByteArray input)
{
    constexpr int kParts = 3;
    QByteArrayList parts;
    while (parts.size() < kParts) {
        const qsizetype border = input.indexOf(kBorder);
        parts.append(border < 0 ? input : input.first(border));
        input = border < 0 ? QByteArray() : input.sliced(border + qstrlen(kBorder));
    }
    return parts;
}

} // namespace

/// Whatever the files of a home say, every location lies in the home, behind no link, and holds
/// none of what is always the user's.
QByteArray findingInSurvey(const QByteArray &input)
{
    const QByteArrayList parts = partsOf(input);
    home().make(".config/user-dirs.dirs", parts[0]);
    home().make(".mozilla/firefox/profiles.ini", parts[1]);
    home().make(".config/chromium/Local State", parts[2]);
    const HomeLayout layout = home().survey();
    const FileUrl key = FileUrl::fromPath(home().path(".ssh/key"), FileUrlKind::File);
    for (const SliceDescription &slice : sliceCatalogue()) {
        for (const FileUrl &location : layout.locations(slice.kind).value_or(FileUrls())) {
            if (!isOfTheHome(location))
                return "outside: " + location.path();
            if (key.path().startsWith(location.path() + '/'))
                return "the user's own: " + location.path();
        }
    }
    return {};
}
