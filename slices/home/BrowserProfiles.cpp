#include "slices/home/BrowserProfiles.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <map>

namespace {

constexpr std::size_t kLargestLocalState = std::size_t{4} * 1024 * 1024;
constexpr std::size_t kLargestProfilesIni = std::size_t{64} * 1024;

bool isNumbered(QByteArrayView text, QByteArrayView name)
{
    return text.startsWith(name) && text.size() > name.size() &&
           std::all_of(text.begin() + name.size(), text.end(),
                       [](char character) { return character >= '0' && character <= '9'; });
}

/// The names of folders in "Local State": a profile need not have a name that the browser gave it.
QByteArrayList namesInLocalState(const HomeProbe &home, const QByteArray &folder)
{
    const auto text = home.contentOf(folder + "/Local State", kLargestLocalState);
    const QJsonObject profiles = QJsonDocument::fromJson(text.value_or(QByteArray()))
                                     .object()
                                     .value(QLatin1String("profile"))
                                     .toObject()
                                     .value(QLatin1String("info_cache"))
                                     .toObject();
    QByteArrayList names;
    for (const QString &name : profiles.keys())
        names.append(name.toUtf8());
    return names;
}

struct ListedProfile
{
    QByteArray path;
    bool isRelative = false;
};

/// The profiles by their sections. Of several lines with one name the last counts, as it does for
/// the program.
std::map<QByteArray, ListedProfile> profilesInIni(QByteArray text)
{
    constexpr QByteArrayView kPath("Path=");
    constexpr QByteArrayView kIsRelative("IsRelative=");
    std::map<QByteArray, ListedProfile> found;
    ListedProfile *profile = nullptr;
    for (const QByteArray &line : text.replace('\r', '\n').split('\n')) {
        const QByteArray trimmed = line.trimmed();
        if (trimmed.startsWith('['))
            profile = trimmed.endsWith(']') && isNumbered(trimmed.chopped(1), "[Profile")
                          ? &found[trimmed]
                          : nullptr;
        else if (profile && line.startsWith(kPath))
            profile->path = line.sliced(kPath.size());
        else if (profile && line.startsWith(kIsRelative))
            profile->isRelative = line.sliced(kIsRelative.size()) == "1";
    }
    return found;
}

bool leadsDown(const QByteArray &path)
{
    const QByteArrayList names = path.split('/');
    return std::none_of(names.begin(), names.end(), [](const QByteArray &name) {
        return name.isEmpty() || name == "." || name == "..";
    });
}

} // namespace

QByteArrayList chromiumProfiles(const HomeProbe &home, const QByteArray &folder)
{
    const QByteArrayList named = namesInLocalState(home, folder);
    QByteArrayList found = home.foldersMatching(folder + "/*");
    found.removeIf([&](const QByteArray &path) {
        const QByteArray name = path.sliced(folder.size() + 1);
        return name != "Default" && !isNumbered(name, "Profile ") && !named.contains(name);
    });
    return found;
}

QByteArrayList firefoxProfiles(const HomeProbe &home, const QByteArray &folder)
{
    const auto text = home.contentOf(folder + "/profiles.ini", kLargestProfilesIni);
    QByteArrayList found;
    for (const auto &[section, profile] : profilesInIni(text.value_or(QByteArray()))) {
        const QByteArray path = folder + '/' + profile.path;
        if (profile.isRelative && leadsDown(profile.path) && !found.contains(path) &&
            home.hasFolder(path))
            found.append(path);
    }
    return found;
}
