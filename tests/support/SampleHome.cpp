#include "tests/support/SampleHome.h"

#include "app/RealHomeDirectory.h"

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

constexpr MadeFile kSliceFiles[] = {
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

    {"Library/Containers/com.apple.mail/Data/Library/Mail Downloads/A1/slides.key", 38 * kMega},
    {"Library/Containers/com.apple.mail/Data/Library/Mail Downloads/B2/photo.jpg", 6 * kMega},

    {"Library/Application Support/Google/Chrome/Default/Cookies", 2 * kMega},
    {"Library/Application Support/Google/Chrome/Default/History", 21 * kMega},
    {"Library/Application Support/Google/Chrome/Default/Web Data", 900 * kKilo},
    {"Library/Safari/History.plist", 14 * kMega},
    {"Library/Safari/WebpageIcons.db", 8 * kMega},
};

/// What nobody chose: beside the places, named like them, or found by the search alone.
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
    {"Library/Application Support/Google/Chrome/Default/Bookmarks", 60 * kKilo},
    {"Library/Caches.bak/org.example.mail/Envelope Index", 9 * kMega},
    {"Library/Preferences/org.example.mail.plist", 4 * kKilo},
    {"Library/Safari/Bookmarks.plist", 70 * kKilo},
    {"Movies/Summer in the mountains.mov", 2'350 * kMega},
    {"Movies/.unfinished.mov", 500 * kMega},
    {"Music/Concert.flac", 420 * kMega + 7},
    {"Pictures/Panorama.tiff", 180 * kMega},
    {"Pictures/2014/beach.jpg", 7 * kMega},
    {"Public/Drop Box/from a friend.zip", 15 * kMega},
};

bool isBelow(const QByteArray &path, const QByteArray &folder)
{
    return path.startsWith(folder + '/');
}

bool hasHiddenName(const QByteArray &relativePath)
{
    return ('/' + relativePath).contains("/.");
}

} // namespace

SampleHome::SampleHome(const ScratchFolder &place, int scale) : m_place(place)
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

QList<QByteArray> SampleHome::placesOf(int slice)
{
    static const QByteArray chrome = "Library/Application Support/Google/Chrome/Default/";
    static const QList<QByteArray> places[kSlices] = {
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
    return places[slice];
}

qint64 SampleHome::bytesShownFor(int slice) const
{
    qint64 bytes = 0;
    for (const QByteArray &place : placesOf(slice))
        bytes += bytesShownAt(place);
    return bytes;
}

qint64 SampleHome::bytesShownAt(const QByteArray &relativePath) const
{
    const Item place = m_items.value(relativePath);
    qint64 bytes = place.isFolder ? 0 : place.size;
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
    const QList<QByteArray> places = placesOf(slice);
    for (auto item = m_items.begin(); item != m_items.end(); ++item) {
        const bool isCleaned = std::ranges::any_of(places, [&](const QByteArray &place) {
            return isBelow(item.key(), place) || (item.key() == place && !item->isFolder);
        });
        if (isCleaned)
            cleaned.append(item.key());
    }
    return cleaned;
}

QList<QByteArray> SampleHome::largeFiles() const
{
    static const QList<QByteArray> searched{"Desktop",  "Documents", "Downloads",
                                            "Dropbox",  "Movies",    "Music",
                                            "Pictures", "Public",    "Sites"};
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
    for (const MadeFile &made : kSliceFiles)
        file(made.path, made.size);
}

void SampleHome::makeSmallFiles(int scale)
{
    constexpr int kFilesPerFolder = 15;
    for (int i = 0; i < 3 * scale; ++i) {
        const QByteArray folder = "Library/Caches/org.example.app" + QByteArray::number(i) + '/';
        for (int j = 0; j < kFilesPerFolder; ++j)
            file(folder + "entry " + QByteArray::number(j), (j + 1) * kKilo + i);
    }
    for (int i = 0; i < kFilesPerFolder * scale; ++i)
        file("Library/Logs/Daily/day " + QByteArray::number(i) + ".log", 800 + i);
}

void SampleHome::makeBystanders()
{
    for (const MadeFile &made : kBystanders)
        file(made.path, made.size);
}

void SampleHome::makeLinks()
{
    link("Downloads/movies", "../Movies");
    link("Downloads/thesis.odt", "../Documents/Thesis.odt");
    link(".Trash/nowhere", "not there");
    link("Library/Caches/shortcut to documents", path("Documents"));
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
