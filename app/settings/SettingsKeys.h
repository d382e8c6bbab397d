#pragma once

#include <QJsonObject>
#include <QLatin1StringView>
#include <QList>

/// The keys of everything that Vantor keeps between two runs. Each key's text is its own name.

/// Data: the grant of the home folder. Its presence means that the folders are initialised.
inline constexpr QLatin1StringView VNTHomeFolderString("VNTHomeFolderString");
/// Data: reserved for a grant of the applications folder; never stored.
inline constexpr QLatin1StringView VNTApplicationFolderString("VNTApplicationFolderString");
/// Strings: the absolute file URLs that no slice, search or cleaning may touch.
inline constexpr QLatin1StringView VNTExcludedPathsString("VNTExcludedPathsString");
/// Integer: the bytes freed by all cleanings so far.
inline constexpr QLatin1StringView VNTTotalCleanedSize("VNTTotalCleanedSize");
/// Boolean: the user declined the tutorial.
inline constexpr QLatin1StringView VNTHideDemoWindowString("VNTHideDemoWindowString");
/// Booleans, one for each slice in the catalogue's order: which are switched on.
inline constexpr QLatin1StringView VNTSelectedSlicesString("VNTSelectedSlicesString");
/// Boolean: the first-launch ping has been sent.
inline constexpr QLatin1StringView VNTHasLaunchedBeforeString("VNTHasLaunchedBeforeString");

enum class SettingType { Boolean, Integer, String, Strings, Booleans, Data };

/// One line of the table of settings.
struct SettingDescription
{
    QLatin1StringView key;
    SettingType type;
    QJsonValue registeredDefault; ///< undefined: the key is absent until it is first stored
};

/// Every setting with its type and its registered default, in the order above.
const QList<SettingDescription> &settingDescriptions();

/// The registered defaults of that table, for UserDefaults::registerDefaults().
QJsonObject registeredDefaults();
