#pragma once

#include "platform/system/HostSystemCalls.h"
#include "slices/home/HomeSurvey.h"
#include "slices/home/ProgramsInUse.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/page/FirefoxProfiles.h"

/// What the tests of freedesktop homes share: a made home of a few lines, and what is found in it.

/// A home folder of the test's own. Paths are relative to it; a path with a slash at its end is a
/// folder.
class MadeHome final
{
public:
    explicit MadeHome(const QByteArrayList &paths = {}) : m_home(m_ground / "anna")
    {
        makeFolder(m_home);
        for (const QByteArray &path : paths)
            make(path);
        m_access.emplace(m_home);
    }

    void make(const QByteArray &path, const QByteArray &content = "x") const
    {
        if (path.endsWith('/'))
            makeFolder(m_home / path);
        else
            makeFile(m_home / path, content);
    }
    void link(const QByteArray &path, const QByteArray &target) const
    {
        makeLink(this->path(path), target);
    }
    void nameFirefoxProfiles(const QByteArrayList &profiles,
                             const QByteArray &folder = ".mozilla/firefox") const
    {
        listFirefoxProfiles(path(folder), profiles);
    }
    void nameUserDirs(const QByteArray &lines) const { make(".config/user-dirs.dirs", lines); }

    QByteArray path(const QByteArray &relative = {}) const
    {
        return relative.isEmpty() ? m_home.value : m_home / relative;
    }
    QByteArray outside(const QByteArray &relative) const { return m_ground / relative; }
    FileUrl url() const { return FileUrl::fromPath(m_home.value, FileUrlKind::Folder); }
    const GrantedFolder &access() const { return *m_access; }

    HomeLayout survey(const HomeEnvironment &environment = {},
                      const SystemCalls &calls = hostSystemCalls()) const
    {
        return surveyHome(calls, access(), url(), environment);
    }

    /// A URL's path relative to the home, a folder's with its slash; "OUTSIDE" and all of it where
    /// it is not below.
    QByteArray relative(const FileUrl &url) const
    {
        if (!url.path().startsWith(m_home.value + '/'))
            return "OUTSIDE " + url.path();
        return url.path().sliced(m_home.value.size() + 1) + (url.isFolder() ? "/" : "");
    }
    QByteArrayList relative(const FileUrls &urls) const
    {
        QByteArrayList paths;
        for (const FileUrl &url : urls)
            paths.append(relative(url));
        return paths;
    }

private:
    struct Path
    {
        explicit Path(const QByteArray &path) : value(path) {}
        QByteArray operator/(const QByteArray &relative) const { return value + '/' + relative; }
        operator QByteArray() const { return value; }

        QByteArray value;
    };

    CleaningGround m_ground;
    Path m_home;
    std::optional<GrantedFolder> m_access;
};

/// The slices that have locations, with these.
using Found = std::map<SliceKind, QByteArrayList>;

inline Found locationsOf(const MadeHome &home, const HomeLayout &layout)
{
    Found found;
    for (const SliceDescription &slice : sliceCatalogue()) {
        const QByteArrayList paths =
            home.relative(layout.locations(slice.kind).value_or(FileUrls()));
        if (!paths.isEmpty())
            found[slice.kind] = paths;
    }
    return found;
}

/// What a freshly used desktop has.
inline const QByteArrayList kPlainHome{
    ".local/share/Trash/files/letter.odt",
    ".local/share/Trash/info/letter.odt.trashinfo",
    ".local/share/Trash/expunged/",
    ".local/share/Trash/directorysizes",
    ".cache/thumbnails/normal/1.png",
    ".local/share/xorg/Xorg.0.log",
    ".local/share/app/logs/a.log",
    ".config/editor/logs/1/main.log",
    ".config/editor/settings.json",
    ".local/state/player/logs/p.log",
    ".npm/_logs/debug.log",
    "Downloads/setup.run",
    "Documents/thesis.odt",
    ".config/user-dirs.locale",
};

inline const Found kPlainLocations{
    {SliceKind::Trash,
     {".local/share/Trash/files/", ".local/share/Trash/info/", ".local/share/Trash/expunged/"}},
    {SliceKind::Cache, {".cache/"}},
    {SliceKind::AppLogs,
     {".local/share/xorg/", ".npm/_logs/", ".config/editor/logs/", ".local/share/app/logs/",
      ".local/state/player/logs/"}},
    {SliceKind::Downloads, {"Downloads/"}},
};

/// The same, but for some slices.
inline Found plainWith(const Found &others)
{
    Found all = kPlainLocations;
    for (const auto &[kind, paths] : others)
        all[kind] = paths;
    return all;
}
