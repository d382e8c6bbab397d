#include "bench/Commands.h"
#include "platform/system/FileDescriptor.h"

#include <QFile>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned kCacheEntries = 224'000;
constexpr unsigned kFlatFiles = 200'000;
constexpr unsigned kChains = 20;
constexpr int kChainLevels = 1000;
constexpr unsigned kSeed = 7;
constexpr mode_t kFolderMode = 0755;
constexpr mode_t kFileMode = 0644;

/// The smallest and the largest count of something.
struct Span
{
    std::size_t from;
    std::size_t to;
};

constexpr Span kFileBytes{0, 50'000};
constexpr Span kHashedFiles{5, 40};     ///< in each of the 256 folders
constexpr Span kListedFiles{100, 4000}; ///< in the one folder of an application
constexpr Span kNestedFolders{50, 600}; ///< of an application
constexpr Span kNestedFiles{0, 12};     ///< in each of these
constexpr Span kOneInTen{0, 9};

constexpr Span kLargeBytes{100'000'001, 900'000'000};
constexpr unsigned kProjects = 120;
constexpr Span kProjectFolders{20, 120};
constexpr Span kProjectFiles{0, 12}; ///< in each of these
constexpr unsigned kAlbums = 1200;
constexpr Span kTracks{6, 20};
constexpr unsigned kEvents = 150;
constexpr Span kPhotos{50, 500};
constexpr unsigned kDownloads = 4000;
constexpr unsigned kFilms = 300;
constexpr unsigned kLargeFilms = 200;

void require(bool done, const std::string &name)
{
    if (!done) {
        std::perror(("vantor-bench: " + name).c_str());
        std::exit(kFailed);
    }
}

/// Makes entries with names and sizes at random, the same ones each time. The files are holes.
class TreeMaker final
{
public:
    unsigned entries() const { return m_entries; }
    unsigned pick(Span span)
    {
        return static_cast<unsigned>(span.from + m_random() % (span.to - span.from + 1));
    }

    FileDescriptor folder(int parent, const std::string &name)
    {
        require(::mkdirat(parent, name.c_str(), kFolderMode) == 0, name);
        FileDescriptor made(::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        require(made.isValid(), name);
        ++m_entries;
        return made;
    }

    void files(int parent, unsigned count, Span bytes = kFileBytes)
    {
        for (unsigned i = 0; i < count; ++i) {
            const std::string name = hashedName();
            const FileDescriptor file(
                ::openat(parent, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode));
            require(file.isValid() && ::ftruncate(file.get(), pick(bytes)) == 0, name);
            ++m_entries;
        }
    }

    void link(int parent, const char *target)
    {
        const std::string name = hashedName();
        require(::symlinkat(target, parent, name.c_str()) == 0, name);
        ++m_entries;
    }

private:
    std::string hashedName()
    {
        constexpr std::string_view kDigits = "0123456789abcdef";
        std::string name(32, '0');
        for (char &digit : name)
            digit = kDigits[m_random() % kDigits.size()];
        return name;
    }

    std::mt19937 m_random{kSeed};
    unsigned m_entries = 0;
};

/// A cache as a browser keeps it: files in 256 folders, each named after the first byte of a hash.
void makeHashedCache(TreeMaker &maker, int application)
{
    for (int i = 0; i < 256; ++i)
        maker.files(maker.folder(application, std::to_string(i)).get(), maker.pick(kHashedFiles));
}

/// A cache as most programs keep it: nested folders with few files.
void makeNestedCache(TreeMaker &maker, int application)
{
    std::vector<FileDescriptor> folders;
    for (unsigned left = maker.pick(kNestedFolders); left > 0; --left) {
        const bool isTop = folders.empty() || maker.pick(kOneInTen) == 0;
        const int parent = isTop ? application : folders[maker.pick({0, folders.size() - 1})].get();
        folders.push_back(maker.folder(parent, "folder" + std::to_string(left)));
        maker.files(folders.back().get(), maker.pick(kNestedFiles));
    }
}

void makeCache(int top, unsigned share)
{
    TreeMaker maker;
    const FileDescriptor cache = maker.folder(top, "cache");
    for (int number = 0; maker.entries() < kCacheEntries / share; ++number) {
        const FileDescriptor application =
            maker.folder(cache.get(), "application" + std::to_string(number));
        switch (number % 4) {
        case 0:
            makeHashedCache(maker, application.get());
            break;
        case 1:
            maker.files(application.get(), maker.pick(kListedFiles));
            break;
        default:
            makeNestedCache(maker, application.get());
        }
    }
}

void makeFlat(int top, unsigned share)
{
    TreeMaker maker;
    maker.files(maker.folder(top, "flat").get(), kFlatFiles / share);
}

void makeDeep(int top, unsigned share)
{
    TreeMaker maker;
    const FileDescriptor deep = maker.folder(top, "deep");
    for (unsigned chain = 0; chain < std::max(1U, kChains / share); ++chain) {
        FileDescriptor level = maker.folder(deep.get(), "chain" + std::to_string(chain));
        for (int depth = 1; depth < kChainLevels; ++depth) {
            maker.files(level.get(), 2);
            level = maker.folder(level.get(), "level" + std::to_string(depth));
        }
    }
}

/// Folders as a project has them: some nested, with few files.
void makeProject(TreeMaker &maker, int parent, const std::string &name)
{
    std::vector<FileDescriptor> folders;
    folders.push_back(maker.folder(parent, name));
    for (unsigned left = maker.pick(kProjectFolders); left > 0; --left) {
        const int around = folders[maker.pick({0, folders.size() - 1})].get();
        folders.push_back(maker.folder(around, "folder" + std::to_string(left)));
        maker.files(folders.back().get(), maker.pick(kProjectFiles));
    }
}

/// A home with the folders that a desktop makes, for the search too.
void makeHome(int top, unsigned share)
{
    TreeMaker maker;
    const FileDescriptor home = maker.folder(top, "home");
    const FileDescriptor documents = maker.folder(home.get(), "Documents");
    for (unsigned i = 0; i < kProjects / share; ++i)
        makeProject(maker, documents.get(), "project" + std::to_string(i));
    const FileDescriptor music = maker.folder(home.get(), "Music");
    for (unsigned i = 0; i < kAlbums / share; ++i)
        maker.files(maker.folder(music.get(), "album" + std::to_string(i)).get(),
                    maker.pick(kTracks));
    const FileDescriptor pictures = maker.folder(home.get(), "Pictures");
    for (unsigned i = 0; i < kEvents / share; ++i)
        maker.files(maker.folder(pictures.get(), "event" + std::to_string(i)).get(),
                    maker.pick(kPhotos));
    const FileDescriptor downloads = maker.folder(home.get(), "Downloads");
    maker.files(downloads.get(), kDownloads / share);
    maker.link(downloads.get(), "../Documents");
    const FileDescriptor videos = maker.folder(home.get(), "Videos");
    maker.files(videos.get(), kFilms / share);
    maker.files(videos.get(), kLargeFilms / share, kLargeBytes);
    makeHashedCache(maker, maker.folder(home.get(), "Desktop").get());
}

} // namespace

int runTreesCommand(const QStringList &arguments)
{
    const bool isShared = arguments.value(0) == QStringLiteral("--share");
    const unsigned share = isShared ? arguments.value(1).toUInt() : 1;
    const QStringList folders = arguments.mid(isShared ? 2 : 0);
    if (folders.size() != 1 || share == 0) {
        std::fprintf(stderr, "vantor-bench: trees [--share N] takes one folder\n");
        return kUsageError;
    }
    const QByteArray path = QFile::encodeName(folders.first());
    const FileDescriptor top(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    require(top.isValid(), path.toStdString());
    makeCache(top.get(), share);
    makeFlat(top.get(), share);
    makeDeep(top.get(), share);
    makeHome(top.get(), share);
    return kDone;
}
