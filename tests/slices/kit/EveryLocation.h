#pragma once

#include "tests/slices/kit/HomeKit.h"

/// Every location of a freedesktop home that is cleaned, written out by hand, and a home that has
/// something in all of them. A star of a location's pattern stands for one name here.

/// Where a browser of the Chromium family keeps a profile's databases.
inline const QByteArrayList kChromiumProfiles{
    ".config/google-chrome/Default",
    ".config/chromium/Default",
    ".config/BraveSoftware/Brave-Browser/Default",
    ".config/microsoft-edge/Default",
    ".config/vivaldi/Default",
    ".var/app/com.google.Chrome/config/google-chrome/Default",
    ".var/app/org.chromium.Chromium/config/chromium/Default",
    ".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser/Default",
    ".var/app/com.microsoft.Edge/config/microsoft-edge/Default",
    ".var/app/com.vivaldi.Vivaldi/config/vivaldi/Default",
};

/// Each is the one that is listed where it lies.
inline const QByteArrayList kFirefoxProfiles{
    ".mozilla/firefox/ab",
    ".config/mozilla/firefox/ab",
    ".var/app/org.mozilla.firefox/.mozilla/firefox/ab",
    ".var/app/org.mozilla.firefox/config/mozilla/firefox/ab",
    "snap/firefox/common/.mozilla/firefox/ab",
};

/// Which profiles have journals: journals in one profile show the behaviour for all, and take less
/// time.
enum class Journals { OfFirstProfiles, OfAll };

inline QByteArrayList databasesIn(const QByteArrayList &profiles, const QByteArrayList &names,
                                  Journals journals)
{
    QByteArrayList files;
    for (const QByteArray &profile : profiles) {
        const bool hasJournals = journals == Journals::OfAll || profile == profiles.constFirst();
        for (const QByteArray &name : names) {
            files.append(profile + '/' + name);
            for (const char *ending : {"-journal", "-wal", "-shm"}) {
                if (hasJournals)
                    files.append(profile + '/' + name + ending);
            }
        }
    }
    return files;
}

inline QByteArrayList everyBrowserFile(Journals journals)
{
    const QByteArrayList ofChromium{"Cookies", "Network/Cookies", "History", "Web Data"};
    const QByteArrayList ofFirefox{"cookies.sqlite", "formhistory.sqlite"};
    return databasesIn(kChromiumProfiles, ofChromium, journals) +
           databasesIn(kFirefoxProfiles, ofFirefox, journals);
}

/// What lies beside them in the profiles, and must never go.
inline QByteArrayList everyBrowserTreasure()
{
    QByteArrayList files;
    for (const QByteArray &profile : kChromiumProfiles) {
        for (const char *name : {"Login Data", "Login Data-journal", "Bookmarks", "Preferences"})
            files.append(profile + '/' + name);
    }
    for (const QByteArray &profile : kFirefoxProfiles) {
        for (const char *name : {"places.sqlite", "places.sqlite-wal", "logins.json", "key4.db"})
            files.append(profile + '/' + name);
    }
    return files;
}

inline const QByteArray kITunesOfAnna =
    ".wine/drive_c/users/anna/AppData/Roaming/Apple Computer/iTunes/";

/// In the order of a survey. "data" and "var/cache" are what the environment names.
inline const Found kEveryLocation{
    {SliceKind::Trash,
     {
         ".local/share/Trash/files/",
         ".local/share/Trash/info/",
         ".local/share/Trash/expunged/",
         ".var/app/org.a.A/data/Trash/files/",
         ".var/app/org.a.A/data/Trash/info/",
         ".var/app/org.a.A/data/Trash/expunged/",
         "snap/tool/common/.local/share/Trash/files/",
         "snap/tool/common/.local/share/Trash/info/",
         "snap/tool/common/.local/share/Trash/expunged/",
         "snap/linked/7/.local/share/Trash/files/",
         "snap/linked/7/.local/share/Trash/info/",
         "snap/linked/7/.local/share/Trash/expunged/",
         "snap/tool/current/.local/share/Trash/files/",
         "snap/tool/current/.local/share/Trash/info/",
         "snap/tool/current/.local/share/Trash/expunged/",
         "data/Trash/files/",
         "data/Trash/info/",
         "data/Trash/expunged/",
     }},
    {SliceKind::Cache,
     {".cache/", ".var/app/org.a.A/cache/", "snap/tool/common/.cache/", "var/cache/"}},
    {SliceKind::AppLogs,
     {
         ".local/share/xorg/",
         ".npm/_logs/",
         ".config/editor/logs/",
         ".local/share/app/logs/",
         ".local/state/player/logs/",
         ".var/app/org.a.A/config/a/logs/",
     }},
    {SliceKind::OldIos,
     {
         kITunesOfAnna + "iPad Software Updates/",
         kITunesOfAnna + "iPod Software Updates/",
         kITunesOfAnna + "iPhone Software Updates/",
     }},
    {SliceKind::Downloads, {"Downloads/"}},
    {SliceKind::MailDownloads, {".claws-mail/mimetmp/", ".sylpheed-2.0/mimetmp/"}},
    {SliceKind::BrowserData, everyBrowserFile(Journals::OfFirstProfiles)},
};

/// As Firefox lists the profiles of one folder.
inline void listProfiles(const MadeHome &home, const QByteArray &folder,
                         const QByteArrayList &names)
{
    QByteArray lines;
    for (const QByteArray &name : names)
        lines += "[Profile" + QByteArray::number(names.indexOf(name)) + "]\nName=" + name +
                 "\nIsRelative=1\nPath=" + name + "\n\n";
    home.make(folder + "/profiles.ini", lines + "[General]\nStartWithLastProfile=1\nVersion=2\n");
}

inline void makeBrowsers(const MadeHome &home, Journals journals)
{
    for (const QByteArray &path : everyBrowserFile(journals) + everyBrowserTreasure())
        home.make(path);
    for (const QByteArray &profile : kFirefoxProfiles)
        listProfiles(home, profile.chopped(3), {"ab"});
}

/// Something in every location, and beside them what must never go.
inline void makeEveryLocation(const MadeHome &home)
{
    for (const auto &[kind, paths] : kEveryLocation) {
        for (const QByteArray &path : paths)
            home.make(path.endsWith('/') ? path + "item" : path);
    }
    makeBrowsers(home, Journals::OfFirstProfiles);
    home.link("snap/linked/current", "7");
    home.make("Documents/thesis.odt");
}

inline HomeEnvironment environmentOfEveryLocation(const MadeHome &home)
{
    return {home.path("data"), home.path("var/cache")};
}
