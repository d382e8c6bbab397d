#pragma once

#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/MadeMachine.h"

#include <algorithm>

/// What the tests of the programs share: all their caches, and what stays of them.

/// Every cache that some program has, and some that no program has.
inline const QByteArrayList kCaches{
    ".cache/BraveSoftware",
    ".cache/chromium",
    ".cache/epiphany",
    ".cache/evolution",
    ".cache/falkon",
    ".cache/geary",
    ".cache/google-chrome",
    ".cache/google-chrome-beta",
    ".cache/google-chrome-unstable",
    ".cache/kmail2",
    ".cache/konqueror",
    ".cache/librewolf",
    ".cache/microsoft-edge",
    ".cache/microsoft-edge-beta",
    ".cache/microsoft-edge-dev",
    ".cache/mozilla",
    ".cache/opera",
    ".cache/qutebrowser",
    ".cache/thumbnails",
    ".cache/thunderbird",
    ".cache/vivaldi",
    ".cache/vivaldi-snapshot",
    ".var/app/com.brave.Browser/cache",
    ".var/app/com.google.Chrome/cache",
    ".var/app/com.google.ChromeDev/cache",
    ".var/app/com.microsoft.Edge/cache",
    ".var/app/com.microsoft.EdgeDev/cache",
    ".var/app/com.opera.Opera/cache",
    ".var/app/com.vivaldi.Vivaldi/cache",
    ".var/app/io.github.ungoogled_software.ungoogled_chromium/cache",
    ".var/app/io.gitlab.librewolf-community/cache",
    ".var/app/org.a.A/cache",
    ".var/app/org.chromium.Chromium/cache",
    ".var/app/org.gnome.Epiphany/cache",
    ".var/app/org.gnome.Evolution/cache",
    ".var/app/org.gnome.Geary/cache",
    ".var/app/org.kde.falkon/cache",
    ".var/app/org.kde.kontact/cache",
    ".var/app/org.mozilla.Thunderbird/cache",
    ".var/app/org.mozilla.firefox/cache",
    ".var/app/org.mozilla.thunderbird/cache",
    ".var/app/org.qutebrowser.qutebrowser/cache",
    "snap/brave/common/.cache",
    "snap/chromium/common/.cache",
    "snap/firefox/common/.cache",
    "snap/opera/common/.cache",
    "snap/thunderbird/common/.cache",
    "snap/vivaldi/common/.cache",
};

inline void makeCaches(const MadeHome &home)
{
    for (const QByteArray &cache : kCaches)
        home.make(cache + "/item");
}

/// What stays while that machine runs: files of the browsers, and caches. Sorted.
inline QByteArrayList inUse(const MadeHome &home, const MadeMachine &machine)
{
    const HomeLayout layout = home.survey();
    const auto found = ProgramsInUse::find(machine, home.access(), layout);
    FileUrls all = *layout.locations(SliceKind::BrowserData);
    all += *layout.locations(SliceKind::Cache);
    const FileUrls rest = found.without(all);
    FileUrls kept = found.keptInside(all);
    std::copy_if(all.begin(), all.end(), std::back_inserter(kept),
                 [&](const FileUrl &location) { return !rest.contains(location); });
    QByteArrayList paths = home.relative(kept);
    std::sort(paths.begin(), paths.end());
    return paths;
}

inline QByteArrayList sorted(QByteArrayList paths)
{
    std::sort(paths.begin(), paths.end());
    return paths;
}
