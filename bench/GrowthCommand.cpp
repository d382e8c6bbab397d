#include "bench/Commands.h"
#include "bench/FolderAccess.h"
#include "largefiles/search/LargeFileSearch.h"
#include "platform/system/HostSystemCalls.h"
#include "slices/cleaning/Cleaning.h"
#include "slices/sizing/FolderSizing.h"

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <array>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::array kNumbers{10, 100, 1000, 10'000};
constexpr int kExclusionsBeside = 1000;
constexpr int kFolders = 500;
constexpr ::mode_t kFolderMode = 0755;
constexpr ::mode_t kFileMode = 0644;
constexpr int kFilesInEach = 40;
/// A row whose last cell took longer than this ends: a tenfold number would take minutes.
constexpr double kPatienceSeconds = 5;

/// A folder that is granted, to be filled; gone with this object.
class Ground final
{
public:
    explicit Ground(const QString &around)
        : m_made(around + QStringLiteral("/growth-XXXXXX")),
          m_url(FileUrl::fromPath(QFile::encodeName(QFileInfo(m_made.path()).canonicalFilePath()),
                                  FileUrlKind::Folder)),
          m_access(m_url)
    {
        if (!m_made.isValid() || !m_access.isOpen()) {
            std::fprintf(stderr, "vantor-bench: cannot make a folder in %s\n", qPrintable(around));
            std::exit(kFailed);
        }
    }

    FolderAccess &access() { return m_access; }

    FileUrl folder(const QByteArray &path) const
    {
        FileUrl url = m_url.appending(path, FileUrlKind::Folder);
        ::mkdir(url.path().constData(), kFolderMode);
        return url;
    }
    FileUrl file(const QByteArray &path) const
    {
        FileUrl url = m_url.appending(path, FileUrlKind::File);
        ::close(::open(url.path().constData(), O_WRONLY | O_CREAT | O_CLOEXEC, kFileMode));
        return url;
    }
    /// That many files in a new folder.
    FileUrls files(const QByteArray &path, int count) const
    {
        folder(path);
        FileUrls urls;
        for (int i = 0; i < count; ++i)
            urls.append(file(path + "/a file of a program " + QByteArray::number(i)));
        return urls;
    }
    /// Folders with files, in a new folder.
    FileUrl tree(const QByteArray &path) const
    {
        FileUrl top = folder(path);
        for (int i = 0; i < kFolders; ++i)
            files(path + "/folder " + QByteArray::number(i), kFilesInEach);
        return top;
    }

private:
    const QTemporaryDir m_made;
    const FileUrl m_url;
    FolderAccess m_access;
};

QStringList textsOf(const FileUrls &urls)
{
    QStringList texts;
    for (const FileUrl &url : urls)
        texts.append(QString::fromLatin1(url.absoluteString()));
    return texts;
}

ExcludedPaths excluding(const FileUrls &urls)
{
    return ExcludedPaths::fromStoredStrings(textsOf(urls));
}

/// Of all processors: the disk and other programs would hide how the work grows.
template <typename Work> double secondsOf(const Work &work)
{
    const std::clock_t started = std::clock();
    work();
    return static_cast<double>(std::clock() - started) / CLOCKS_PER_SEC;
}

SliceToClean slice(const FileUrls &locations, SliceContent content)
{
    return {QStringLiteral("slice"), locations, Moment::never(), content};
}

double planned(Ground &ground, const SliceToClean &slice, const FileUrls &excluded)
{
    return secondsOf([&] {
        makeCleaningPlan(hostSystemCalls(), ground.access(), {slice}, excluding(excluded));
    });
}

double cleaned(Ground &ground, const SliceToClean &slice, const FileUrls &excluded)
{
    const InUseCheck nothing = [](const CleaningLocation &, const FileUrl &) { return FileUrls(); };
    return secondsOf([&] {
        performCleaning(
            hostSystemCalls(),
            makeCleaningPlan(hostSystemCalls(), ground.access(), {slice}, excluding(excluded)), {},
            nothing);
    });
}

double planWithExclusions(Ground &ground, int number)
{
    return planned(ground, slice({ground.folder("cache")}, SliceContent::Folders),
                   ground.files("kept", number));
}

double planWithExclusionsThroughLinks(Ground &ground, int number)
{
    FileUrls excluded;
    const FileUrl link = ground.access().grantedFolder()->appending("link", FileUrlKind::Folder);
    for (const FileUrl &url : ground.files("kept", number))
        excluded.append(link.appending(url.lastPathComponent(), FileUrlKind::File));
    (void)::symlink("kept", link.path().constData());
    return planned(ground, slice({ground.folder("cache")}, SliceContent::Folders), excluded);
}

double planWithKeptPlaces(Ground &ground, int number)
{
    const FileUrl location = ground.folder("cache");
    const FileUrls kept = ground.files("cache/program", number);
    SliceToClean cache = slice({location}, SliceContent::Folders);
    cache.kept = kept;
    return planned(ground, cache, {});
}

double cleanFiles(Ground &ground, int number)
{
    return cleaned(ground, slice(ground.files("files", number), SliceContent::Files), {});
}

double cleanFilesBesideExclusions(Ground &ground, int number)
{
    return cleaned(ground, slice(ground.files("files", number), SliceContent::Files),
                   ground.files("kept", kExclusionsBeside));
}

double cleanExcludedFiles(Ground &ground, int number)
{
    const FileUrls files = ground.files("files", number);
    return cleaned(ground, slice(files, SliceContent::Files), files);
}

double cleanProfiles(Ground &ground, int number)
{
    ground.folder("profiles");
    FileUrls locations;
    FileUrls kept;
    for (int i = 0; i < number; ++i) {
        const QByteArray profile = "profiles/profile " + QByteArray::number(i);
        locations.append(ground.folder(profile));
        ground.file(profile + "/goes");
        kept.append(ground.file(profile + "/stays"));
    }
    SliceToClean profiles = slice(locations, SliceContent::Folders);
    profiles.kept = kept;
    return cleaned(ground, profiles, {});
}

double cleanPrograms(Ground &ground, int number)
{
    const FileUrl location = ground.folder("cache");
    FileUrls programs;
    for (int i = 0; i < number; ++i)
        programs.append(ground.folder("cache/program " + QByteArray::number(i)));
    SliceToClean cache = slice({location}, SliceContent::Folders);
    cache.programLocations = programs;
    return cleaned(ground, cache, {});
}

double sizeWithKeptPlaces(Ground &ground, int number)
{
    const FileUrl tree = ground.tree("tree");
    SizingRules rules;
    for (int i = 0; i < number; ++i)
        rules.kept.append("folder " + QByteArray::number(i) + "/kept " + QByteArray::number(i));
    return secondsOf([&] {
        measureFolder(hostSystemCalls(), *ground.access().anchoredPath(tree), {}, 1, rules);
    });
}

class NoListener final : public LargeFileListener
{
    void searching(const FileUrl &) override {}
    void found(const File &) override {}
    void unreadable(const UnreadablePlace &) override {}
};

double searchWithExclusions(Ground &ground, int number)
{
    const FileUrl tree = ground.tree("tree");
    FileUrls excluded;
    for (int i = 0; i < number; ++i)
        excluded.append(
            tree.appending("folder " + QByteArray::number(i) + "/kept", FileUrlKind::Folder));
    NoListener listener;
    const LargeFileQuery query{{tree}, textsOf(excluded), {}};
    return secondsOf(
        [&] { searchLargeFiles(hostSystemCalls(), ground.access(), query, listener, {}, 1); });
}

struct Row
{
    const char *name;
    double (*measure)(Ground &ground, int number);
};

constexpr std::array kRows{
    Row{"exclusions, planned", &planWithExclusions},
    Row{"exclusions through a link, planned", &planWithExclusionsThroughLinks},
    Row{"kept places, planned", &planWithKeptPlaces},
    Row{"single files, cleaned", &cleanFiles},
    Row{"single files beside 1,000 exclusions", &cleanFilesBesideExclusions},
    Row{"single files, all of them excluded", &cleanExcludedFiles},
    Row{"profiles with a kept place each, cleaned", &cleanProfiles},
    Row{"places of programs, cleaned", &cleanPrograms},
    Row{"kept places in a tree of 20,000, measured", &sizeWithKeptPlaces},
    Row{"exclusions in a tree of 20,000, searched", &searchWithExclusions},
};

void measureRow(const QString &folder, const Row &row)
{
    std::printf("%-42s", row.name);
    double last = 0;
    for (const int number : kNumbers) {
        if (last > kPatienceSeconds) {
            std::printf(" %9s", "-");
            continue;
        }
        Ground ground(folder);
        last = row.measure(ground, number);
        std::printf(" %9.1f", last * 1000);
        std::fflush(stdout);
    }
    std::printf("\n");
}

} // namespace

int runGrowthCommand(const QStringList &arguments)
{
    if (arguments.isEmpty() || arguments.size() > 2) {
        std::fprintf(stderr, "vantor-bench: growth takes one folder, and a part of a row's name\n");
        return kUsageError;
    }
    QLoggingCategory::setFilterRules(QStringLiteral("*=false")); // thousands of lines otherwise
    std::printf("%-42s", "processor time in ms for");
    for (const int number : kNumbers)
        std::printf(" %9d", number);
    std::printf("\n");
    for (const Row &row : kRows) {
        if (QLatin1String(row.name).contains(arguments.value(1)))
            measureRow(arguments.first(), row);
    }
    return kDone;
}
