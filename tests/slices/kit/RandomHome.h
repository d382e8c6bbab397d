#pragma once

#include "tests/slices/kit/HomeKit.h"

#include <random>
#include <unistd.h>

/// Parts from which paths in a home are made; most of them have a meaning there.
inline const QByteArrayList kNames{
    ".local",    "share",       "Trash",   "files",     "info",    "expunged",
    ".cache",    "cache",       "data",    "logs",      ".config", "state",
    ".var",      "app",         "org.a.A", "snap",      "tool",    "common",
    "current",   "7",           "xorg",    ".npm",      "_logs",   "Downloads",
    "Documents", "chromium",    "Default", "Profile 1", "Network", ".mozilla",
    "firefox",   ".claws-mail", "mimetmp", "Desktop",   "Get",     "\xff",
};
inline const QByteArrayList kFolders{
    ".local/share/Trash/files",
    ".local/share/Trash/info",
    ".cache",
    ".local/share/xorg",
    ".config/editor/logs",
    ".var/app/org.a.A/cache",
    ".var/app/org.a.A/data/Trash/files",
    "snap/tool/common/.cache",
    "snap/tool/7/.local/share/Trash/files",
    "Downloads",
    "Documents",
    ".claws-mail/mimetmp",
    "data/Trash/files",
    "data/Trash/info",
    "var/cache",
    // One location in another, or around one.
    ".local/share/xorg/logs",
    ".cache/cache",
    ".cache/data/Trash/files",
    ".cache/data/Trash/info",
    "snap/tool/common/.cache/cache",
    "snap/cache",
};
/// What the user's file and the environment are likely to name.
inline const QByteArrayList kNamed{
    "data",        "var/cache",       ".cache/cache",
    ".cache/data", "Documents/cache", "snap/tool/common/.cache/cache",
    "snap",        "snap/cache",      ".local"};
inline const QByteArrayList kFiles{
    ".config/chromium/Default/Cookies",
    ".config/chromium/Default/Network/Cookies",
    ".config/chromium/School/Cookies",
    ".mozilla/firefox/a/cookies.sqlite",
    ".mozilla/firefox/a/cookies.sqlite-wal",
    ".mozilla/firefox/b/cookies.sqlite",
    ".cache/mozilla/firefox/a/item",
    ".cache/chromium/item",
    ".cache/geary/item",
    "var/cache/geary/item",
    "var/cache/mozilla/firefox/item",
    ".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser/Default/History",
    ".var/app/com.brave.Browser/cache/item",
    ".local/share/Trash/directorysizes",
    ".local/share/Trash/files/folder/item",
    ".local/share/Trash/files/folder/other",
    ".local/share/Trash/info/folder.trashinfo",
    ".local/share/Trash/info/item.trashinfo",
};
/// What the files of browsers call their profiles.
inline const QByteArrayList kProfiles{"a",      "b",    "a/", "..", "../../Documents",
                                      "a/../b", "/etc", ""};
inline const QByteArray kLocalState =
    R"({"profile":{"info_cache":{"School":{},"..":{},"../..":{},"School/Network":{}}}})";
inline const QByteArrayList kVariables{"XDG_DOWNLOAD_DIR", "XDG_DOCUMENTS_DIR", "XDG_DESKTOP_DIR",
                                       "XDG_MUSIC_DIR"};

/// A home of any make, with links anywhere, and whatever its files and the environment may say;
/// with files and folders that its user excluded, and with programs that may be running.
class RandomHome final
{
public:
    explicit RandomHome(unsigned seed) : m_random(seed)
    {
        fill();
        if (seed % 8 == 0)
            tryTo([&] { home.make("Library/Caches/item"); });
        if (seed % 4 == 1)
            startFirefox();
        if (seed % 5 == 2)
            running = {"geary", "brave"};
        if (seed % 3 != 0)
            exclude();
        lockTrash();
    }
    ~RandomHome()
    {
        for (const QByteArray &folder : m_readOnly)
            ::chmod(folder.constData(), 0700); // or it could not be cleared away
    }

    MadeHome home;
    HomeEnvironment environment;
    QByteArrayList excluded; ///< relative to the home, a folder's with its slash
    bool isFirefoxRunning = false;
    QByteArrayList running; ///< by the process list

    bool isFolder(const QByteArray &path) const
    {
        return std::filesystem::is_directory(
            std::filesystem::symlink_status(native(home.path(path))));
    }

private:
    std::size_t below(std::size_t limit)
    {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_random);
    }
    const QByteArray &oneOf(const QByteArrayList &all)
    {
        return all[static_cast<qsizetype>(below(static_cast<std::size_t>(all.size())))];
    }
    QByteArray anyPath()
    {
        if (below(2) == 0)
            return oneOf(kFolders);
        QByteArray path = oneOf(kNames);
        for (std::size_t i = below(4); i > 0; --i)
            path += '/' + oneOf(kNames);
        return path;
    }
    QByteArray anyTarget()
    {
        switch (below(4)) {
        case 0:
            return home.path(anyPath());
        case 1:
            return home.outside("elsewhere");
        case 2:
            return "..";
        default:
            return oneOf(kNames);
        }
    }
    QByteArray anyLocation()
    {
        const QByteArrayList ends{home.path(), home.path() + "/..", "/", "/etc", ""};
        if (below(3) == 0)
            return oneOf(ends);
        return home.path(below(2) == 0 ? oneOf(kNamed) : anyPath());
    }
    void tryTo(const std::function<void()> &make)
    {
        try {
            make();
        } catch (const std::filesystem::filesystem_error &) {
            // Something else is in the way: then that is what this home has there.
        }
    }

    void fill()
    {
        makeFile(home.outside("elsewhere/files/keep"));
        for (int i = 0; i < 12; ++i)
            tryTo([&] { home.make(anyPath() + "/item"); });
        for (int i = 0; i < 5; ++i)
            tryTo([&] { home.make(oneOf(kFiles)); });
        if (below(4) != 0)
            tryTo([&] { home.nameFirefoxProfiles({oneOf(kProfiles), oneOf(kProfiles), "a"}); });
        if (below(2) == 0)
            tryTo([&] { home.make(".config/chromium/Local State", kLocalState); });
        for (int i = 0; i < 3; ++i)
            tryTo([&] { home.link(anyPath(), anyTarget()); });
        tryTo([&] { home.make("letter at the top"); });
        QByteArray lines;
        for (int i = 0; i < 3; ++i)
            lines +=
                oneOf(kVariables) + "=\"" + anyLocation().replace(home.path(), "$HOME") + "\"\n";
        tryTo([&] { home.nameUserDirs(lines); });
        environment = {anyLocation(), anyLocation()};
    }

    /// As far as its traces tell, it is this very process. Behind a link its traces are not found.
    void startFirefox()
    {
        tryTo([&] {
            home.link(".mozilla/firefox/a/lock", "127.0.1.1:+" + QByteArray::number(::getpid()));
            const auto profile = native(home.path(".mozilla/firefox/a"));
            isFirefoxRunning = std::filesystem::canonical(profile) == profile;
        });
    }

    void exclude()
    {
        const std::set<QByteArray> all = tree(home.path());
        const QByteArrayList paths(all.begin(), all.end());
        for (std::size_t i = below(3) + 1; i > 0; --i) {
            const QByteArray &path = oneOf(paths);
            excluded.append(isFolder(path) ? path + '/' : path);
        }
    }

    /// Only folders that hold nothing excluded: the others keep their rights.
    void lockTrash()
    {
        for (const QByteArray &path : tree(home.path())) {
            const bool holdsKept =
                std::any_of(excluded.begin(), excluded.end(), [&](const QByteArray &kept) {
                    return kept.startsWith(path + '/') || path.startsWith(kept);
                });
            if (!path.startsWith(".local/share/Trash/files/") || holdsKept || !isFolder(path))
                continue;
            m_readOnly.append(home.path(path));
            ::chmod(m_readOnly.constLast().constData(), 0500);
        }
    }

    std::mt19937 m_random;
    QByteArrayList m_readOnly;
};
