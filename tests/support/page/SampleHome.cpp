#include "tests/support/page/SampleHome.h"

#include "app/grant/RealHomeDirectory.h"
#include "tests/support/page/FirefoxProfiles.h"

#include <algorithm>
#include <filesystem>

namespace {

constexpr qint64 kKilo = 1'000;
constexpr qint64 kMega = 1'000'000;
constexpr qint64 kLargeFileLimit = 100'000'000;

struct MadeFile
{
    const char *path;
    qint64 size;
};

constexpr MadeFile kDownloads[] = {
    {"Downloads/holiday photos.zip", 212 * kMega},
    {"Downloads/setup-4.2.1.dmg", 86 * kMega + 300},
    {"Downloads/Invoice April.pdf", 240 * kKilo},
    {"Downloads/Caf\xc3\xa9 menu.pdf", 1 * kMega},
    {"Downloads/.partial download", 44 * kMega},
    {"Downloads/unpacked/readme.txt", 3 * kKilo},
    {"Downloads/unpacked/data/deep/er/table.csv", 9 * kMega},
    {"Downloads/Keep/contract.pdf", 2 * kMega},
    {"Downloads/Keep/taxes/2014/return.pdf", 5 * kMega},
    {"Downloads/Keep/.private", 6 * kKilo},
    {"Downloads/Keepsake.jpg", 4 * kMega},
};

constexpr MadeFile kLibraryFiles[] = {
    {".Trash/old render.mov", 734 * kMega + 12},
    {".Trash/old project/src/main.cpp", 12 * kKilo},
    {".Trash/old project/build/app.o", 3 * kMega},
    {".Trash/old project/.git/index", 90 * kKilo},
    {".Trash/.hidden note", 2 * kKilo},

    {"Library/Caches/org.example.mail/Envelope Index", 480 * kMega + 5},
    {"Library/Caches/org.example.browser/fsCachedData/blob", 1'630 * kMega},
    {"Library/Caches/org.example.browser/.lock", 1},
    {"Library/Caches/no text \xff\xfe", 7 * kKilo},

    {"Library/Logs/install.log", 31 * kMega + 400 * kKilo},
    {"Library/Logs/Reports/crash #1 100%.log", 640 * kKilo},
    {"Library/Logs/two\nlines.log", 5 * kKilo},

    {"Library/iTunes/iPad Software Updates/iPad_8.1_Restore.ipsw", 1'810 * kMega + 1},
    {"Library/iTunes/iPod Software Updates/iPod_6.1_Restore.ipsw", 790 * kMega},
    {"Library/iTunes/iPhone Software Updates/iPhone_8.1_Restore.ipsw", 1'420 * kMega},

    {"Library/Containers/com.apple.mail/Data/Library/Mail Downloads/A1/slides.key", 38 * kMega},
    {"Library/Containers/com.apple.mail/Data/Library/Mail Downloads/B2/photo.jpg", 6 * kMega},

    {"Library/Application Support/Google/Chrome/Default/Cookies", 2 * kMega},
    {"Library/Application Support/Google/Chrome/Default/History", 21 * kMega},
    {"Library/Application Support/Google/Chrome/Default/Web Data", 900 * kKilo},
    {"Library/Safari/History.plist", 14 * kMega},
    {"Library/Safari/WebpageIcons.db", 8 * kMega},
};

constexpr MadeFile kFreedesktopFiles[] = {
    {".local/share/Trash/files/old render.mov", 734 * kMega + 12},
    {".local/share/Trash/files/old project/src/main.cpp", 12 * kKilo},
    {".local/share/Trash/files/old project/.git/index", 90 * kKilo},
    {".local/share/Trash/files/.hidden note", 2 * kKilo},
    {".local/share/Trash/info/old render.mov.trashinfo", 94},
    {".local/share/Trash/info/old project.trashinfo", 88},
    {".local/share/Trash/expunged/3141592653", 3 * kMega},
    {".var/app/org.example.Editor/data/Trash/files/draft.txt", 5 * kKilo},
    {".var/app/org.example.Editor/data/Trash/info/draft.txt.trashinfo", 71},
    {"snap/player/common/.local/share/Trash/files/old.flac", 31 * kMega},

    {".cache/browser/cache2/entries/blob", 1'630 * kMega},
    {".cache/thumbnails/large/4f1a.png", 80 * kKilo},
    {".cache/.lock", 1},
    {".cache/no text \xff\xfe", 7 * kKilo},
    {".var/app/org.example.Editor/cache/tmp/index", 45 * kMega},
    {"snap/player/common/.cache/covers/1.jpg", 300 * kKilo},

    {".local/share/xorg/Xorg.0.log", 60 * kKilo},
    {".npm/_logs/2026-01-02-debug.log", 9 * kKilo},
    {".config/editor/logs/20260102/crash #1 100%.log", 640 * kKilo},
    {".local/share/game/logs/two\nlines.log", 5 * kKilo},
    {".local/state/player/logs/player.log", 3 * kMega},
    {".var/app/org.example.Editor/config/editor/logs/main.log", 2 * kMega},

    {".wine/drive_c/users/anna/AppData/Roaming/Apple Computer/iTunes/iPad Software Updates/a.ipsw",
     1'810 * kMega + 1},
    {".wine/drive_c/users/anna/AppData/Roaming/Apple Computer/iTunes/iPhone Software "
     "Updates/b.ipsw",
     1'420 * kMega},

    {".claws-mail/mimetmp/00000001/slides.odp", 38 * kMega},
    {".sylpheed-2.0/mimetmp/photo.jpg", 6 * kMega},

    {".config/chromium/Default/Cookies", 2 * kMega},
    {".config/chromium/Default/Cookies-journal", 4 * kKilo},
    {".config/chromium/Default/History", 21 * kMega},
    {".config/chromium/Default/Web Data", 900 * kKilo},
    {".mozilla/firefox/ab12.default/cookies.sqlite", 500 * kKilo},
    {".mozilla/firefox/ab12.default/formhistory.sqlite", 200 * kKilo},
};

/// Files that were not chosen: they lie beside the locations, have similar names, or only the
/// search finds them.
constexpr MadeFile kBystanders[] = {
    {".profile", 800},
    {".config/editor/settings", 2 * kKilo},
    {"Desktop/To read.txt", 1 * kKilo},
    {"Documents/Thesis.odt", 18 * kMega},
    {"Documents/Disk image.iso", 700 * kMega},
    {"Documents/Exactly the limit.bin", kLargeFileLimit},
    {"Documents/One byte more.bin", kLargeFileLimit + 1},
    {"Documents/Tool.app/Contents/Resources/huge.dat", 310 * kMega},
    {"Downloads old/setup-4.1.dmg", 80 * kMega},
    {"Movies/Summer in the mountains.mov", 2'350 * kMega},
    {"Movies/.unfinished.mov", 500 * kMega},
    {"Music/Concert.flac", 420 * kMega + 7},
    {"Pictures/Panorama.tiff", 180 * kMega},
    {"Pictures/2014/beach.jpg", 7 * kMega},
    {"Public/Drop Box/from a friend.zip", 15 * kMega},
};

constexpr MadeFile kLibraryBystanders[] = {
    {"Library/Application Support/Google/Chrome/Default/Bookmarks", 60 * kKilo},
    {"Library/Caches.bak/org.example.mail/Envelope Index", 9 * kMega},
    {"Library/Preferences/org.example.mail.plist", 4 * kKilo},
    {"Library/Safari/Bookmarks.plist", 70 * kKilo},
};

constexpr MadeFile kFreedesktopBystanders[] = {
    {".cache.bak/browser/cache2/entries/blob", 9 * kMega},
    {".claws-mail/imapcache/mail/1", 70 * kKilo},
    {".config/chromium/Default/Bookmarks", 60 * kKilo},
    {".config/chromium/Default/Login Data", 40 * kKilo},
    {".config/chromium/Local State", 8 * kKilo},
    {".config/logs.conf", 1 * kKilo},
    {".local/share/game/saves/1.sav", 4 * kMega},
    {".local/share/keyrings/login.keyring", 2 * kKilo},
    {".mozilla/firefox/ab12.default/key4.db", 290 * kKilo},
    {".mozilla/firefox/ab12.default/logins.json", 12 * kKilo},
    {".mozilla/firefox/ab12.default/places.sqlite", 10 * kMega},
    {".thunderbird/cd34.default/ImapMail/mail/INBOX", 210 * kMega},
    {".var/app/org.example.Editor/data/notes/keep.md", 3 * kKilo},
    {"Videos/Winter by the sea.mkv", 1'200 * kMega},
};

constexpr auto kFirefoxFolder = ".mozilla/firefox";
constexpr auto kFolderSizes = ".local/share/Trash/directorysizes";

bool isBelow(const QByteArray &path, const QByteArray &folder)
{
    return path.startsWith(folder + '/');
}

bool hasHiddenName(const QByteArray &relativePath)
{
    return ('/' + relativePath).contains("/.");
}

QList<QByteArray> libraryLocations(int slice)
{
    static const QByteArray chrome = "Library/Application Support/Google/Chrome/Default/";
    static const QList<QByteArray> locations[SampleHome::kSlices] = {
        {".Trash"},
        {},
        {"Library/Caches"},
        {"Library/Logs"},
        {"Library/iTunes/iPad Software Updates", "Library/iTunes/iPod Software Updates",
         "Library/iTunes/iPhone Software Updates"},
        {"Downloads"},
        {"Library/Containers/com.apple.mail/Data/Library/Mail Downloads"},
        {chrome + "Cookies", chrome + "History", chrome + "Web Data",
         "Library/Safari/History.plist", "Library/Safari/WebpageIcons.db"},
    };
    return locations[slice];
}

QList<QByteArray> freedesktopLocations(int slice)
{
    static const QByteArray sandbox = ".var/app/org.example.Editor/";
    static const QByteArray updates =
        ".wine/drive_c/users/anna/AppData/Roaming/Apple Computer/iTunes/";
    static const QByteArray chromium = ".config/chromium/Default/";
    static const QByteArray firefox = ".mozilla/firefox/ab12.default/";
    static const QList<QByteArray> locations[SampleHome::kSlices] = {
        {".local/share/Trash/files", ".local/share/Trash/info", ".local/share/Trash/expunged",
         sandbox + "data/Trash/files", sandbox + "data/Trash/info",
         "snap/player/common/.local/share/Trash/files"},
        {},
        {".cache", sandbox + "cache", "snap/player/common/.cache"},
        {".local/share/xorg", ".npm/_logs", ".config/editor/logs", ".local/share/game/logs",
         ".local/state/player/logs", sandbox + "config/editor/logs"},
        {updates + "iPad Software Updates", updates + "iPhone Software Updates"},
        {"Downloads"},
        {".claws-mail/mimetmp", ".sylpheed-2.0/mimetmp"},
        {chromium + "Cookies", chromium + "Cookies-journal", chromium + "History",
         chromium + "Web Data", firefox + "cookies.sqlite", firefox + "formhistory.sqlite"},
    };
    return locations[slice];
}

} // namespace

SampleHome::SampleHome(const ScratchFolder &place, int scale, HomeKind kind)
    : m_place(place), m_kind(kind)
{
    const QByteArray login = RealHomeDirectory().split('/').last();
    m_name = login.isEmpty() ? QByteArray("home") : login;
    makeSlices();
    makeSmallFiles(scale);
    makeBystanders();
    makeLinks();
}

FileUrl SampleHome::url(const QByteArray &relativePath, FileUrlKind kind) const
{
    return FileUrl::fromPath(path(relativePath), kind);
}

QByteArray SampleHome::path(const QByteArray &relativePath) const
{
    const QByteArray home = m_place.path(m_name);
    return relativePath.isEmpty() ? home : home + '/' + relativePath;
}

QList<QByteArray> SampleHome::locationsOf(int slice) const
{
    return m_kind == HomeKind::Library ? libraryLocations(slice) : freedesktopLocations(slice);
}

qint64 SampleHome::bytesShownFor(int slice) const
{
    qint64 bytes = 0;
    for (const QByteArray &location : locationsOf(slice))
        bytes += bytesShownAt(location);
    return bytes;
}

qint64 SampleHome::bytesShownAt(const QByteArray &relativePath) const
{
    const Item asked = m_items.value(relativePath);
    qint64 bytes = asked.isFolder ? 0 : asked.size;
    for (auto item = m_items.begin(); item != m_items.end(); ++item) {
        if (isBelow(item.key(), relativePath) && !item->isFolder &&
            !hasHiddenName(item.key().mid(relativePath.size() + 1)))
            bytes += item->size;
    }
    return bytes;
}

QList<QByteArray> SampleHome::pathsCleanedWith(int slice) const
{
    QList<QByteArray> cleaned;
    const QList<QByteArray> locations = locationsOf(slice);
    for (auto item = m_items.begin(); item != m_items.end(); ++item) {
        const bool isCleaned = std::ranges::any_of(locations, [&](const QByteArray &location) {
            return isBelow(item.key(), location) || (item.key() == location && !item->isFolder);
        });
        const bool isBookOfTrash = slice == 0 && item.key() == kFolderSizes;
        if (isCleaned || isBookOfTrash)
            cleaned.append(item.key());
    }
    return cleaned;
}

QList<QByteArray> SampleHome::largeFiles() const
{
    const QByteArray films = m_kind == HomeKind::Library ? "Movies" : "Videos";
    const QList<QByteArray> searched{"Desktop", "Documents", "Downloads", "Dropbox", films,
                                     "Music",   "Pictures",  "Public",    "Sites"};
    QList<QByteArray> found;
    for (auto item = m_items.begin(); item != m_items.end(); ++item) {
        const QByteArray top = item.key().split('/').first();
        if (item->size > kLargeFileLimit && searched.contains(top) && !hasHiddenName(item.key()) &&
            !item.key().contains(".app/"))
            found.append(item.key());
    }
    std::ranges::sort(
        found, [this](const QByteArray &a, const QByteArray &b) { return sizeOf(a) > sizeOf(b); });
    return found;
}

QList<QByteArray> SampleHome::presentPaths() const
{
    const std::string home = path().toStdString();
    QList<QByteArray> present;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(home))
        present.append(QByteArray::fromStdString(entry.path().string().substr(home.size() + 1)));
    std::ranges::sort(present);
    return present;
}

void SampleHome::makeSlices()
{
    for (const MadeFile &made : kDownloads)
        file(made.path, made.size);
    if (m_kind == HomeKind::Library) {
        for (const MadeFile &made : kLibraryFiles)
            file(made.path, made.size);
        return;
    }
    for (const MadeFile &made : kFreedesktopFiles)
        file(made.path, made.size);
    file(kFolderSizes, 120);
}

void SampleHome::makeSmallFiles(int scale)
{
    constexpr int kFilesPerFolder = 15;
    for (int i = 0; i < 3 * scale; ++i) {
        const QByteArray folder = caches() + "/org.example.app" + QByteArray::number(i) + '/';
        for (int j = 0; j < kFilesPerFolder; ++j)
            file(folder + "entry " + QByteArray::number(j), (j + 1) * kKilo + i);
    }
    for (int i = 0; i < kFilesPerFolder * scale; ++i)
        file(locationsOf(3).first() + "/Daily/day " + QByteArray::number(i) + ".log", 800 + i);
}

void SampleHome::makeBystanders()
{
    for (const MadeFile &made : kBystanders)
        file(made.path, made.size);
    if (m_kind == HomeKind::Library) {
        for (const MadeFile &made : kLibraryBystanders)
            file(made.path, made.size);
        return;
    }
    for (const MadeFile &made : kFreedesktopBystanders)
        file(made.path, made.size);
    listFirefoxProfiles(path(kFirefoxFolder), {"ab12.default"});
    m_items.insert(QByteArray(kFirefoxFolder) + "/profiles.ini",
                   {false, firefoxProfilesText({"ab12.default"}).size()});
}

void SampleHome::makeLinks()
{
    link("Downloads/movies", "../Movies");
    link("Downloads/thesis.odt", "../Documents/Thesis.odt");
    link(locationsOf(0).first() + "/nowhere", "not there");
    link(caches() + "/shortcut to documents", path("Documents"));
}

void SampleHome::file(const QByteArray &relativePath, qint64 size)
{
    foldersAbove(relativePath);
    m_place.makeFile(m_name + '/' + relativePath, size);
    m_items.insert(relativePath, {false, size});
}

void SampleHome::link(const QByteArray &relativePath, const QByteArray &target)
{
    foldersAbove(relativePath);
    m_place.makeLink(m_name + '/' + relativePath, target);
    m_items.insert(relativePath, {false, target.size()});
}

void SampleHome::foldersAbove(const QByteArray &relativePath)
{
    const QByteArray folder =
        relativePath.left(std::max<qsizetype>(relativePath.lastIndexOf('/'), 0));
    m_place.makeFolder(folder.isEmpty() ? m_name : m_name + '/' + folder);
    for (qsizetype end = folder.size(); end > 0; end = folder.lastIndexOf('/', end - 1))
        m_items.insert(folder.first(end), {true, 0});
}
