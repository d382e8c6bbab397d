#include "largefiles/search/LargeFileSearch.h"

#include "largefiles/search/ExcludedTexts.h"
#include "platform/base/ByteCount.h"
#include "platform/base/Log.h"
#include "platform/files/AnchoredFolder.h"
#include "platform/files/Packages.h"
#include "platform/system/SystemCalls.h"
#include "platform/walk/DirectoryWalker.h"
#include "slices/sizing/FolderSizing.h"

#include <array>
#include <cerrno>
#include <mutex>
#include <optional>
#include <vector>

namespace {

constexpr std::array kFolderNames{"Desktop", "Documents", "Downloads", "Dropbox", "Movies",
                                  "Music",   "Pictures",  "Public",    "Sites"};

/// The search of one folder of the query. Its functions may be called by all threads of the walk.
class FolderSearch final
{
public:
    /// Tells whether a file may be deleted.
    using Judge = std::function<bool(const FileUrl &file)>;

    FolderSearch(const LargeFileQuery &query, const ExcludedTexts &excluded, FileUrl folder,
                 LargeFileListener &listener, Judge mayBeDeleted)
        : m_query(query),
          m_excluded(excluded),
          m_folder(std::move(folder)),
          m_listener(listener),
          m_mayBeDeleted(std::move(mayBeDeleted))
    {
    }

    bool hasExclusions() const { return !m_excluded.isEmpty(); }
    bool isComplete() const { return m_isComplete; }

    FileUrl urlOf(const WalkedFolder &folder, const char *name, FileUrlKind kind) const
    {
        return m_folder.appending(folder.pathTo(name), kind);
    }

    bool isExcluded(const FileUrl &url) const
    {
        return m_excluded.match(url.absoluteString()) == ExclusionMatch::Whole;
    }

    void take(const FileUrl &url, qint64 size)
    {
        if (isExcluded(url))
            return;
        File file(url);
        file.setSize(size);
        file.setSizeString(stringFromByteCount(size));
        file.setIsDeletable(m_mayBeDeleted(url));
        const std::scoped_lock lock(m_mutex);
        if (!m_query.isListed || !m_query.isListed(url.path()))
            m_listener.found(file);
    }

    void cannotList(const FileUrl &url, int error)
    {
        qCWarning(logVantor, "%s, %s", url.absoluteString().constData(),
                  qUtf8Printable(qt_error_string(error)));
        report({url, error});
        m_end.request_stop();
    }

    void isOnAnotherDisk(const FileUrl &url) { report({url, EXDEV}); }

    void cannotRead(const FileUrl &url, int error)
    {
        qCWarning(logVantor, "%s", qUtf8Printable(qt_error_string(error)));
        report({url, error});
    }

    std::stop_token end() const { return m_end.get_token(); }
    void endNow() { m_end.request_stop(); }

private:
    void report(const UnreadablePlace &place)
    {
        const std::scoped_lock lock(m_mutex);
        m_isComplete = false;
        m_listener.unreadable(place);
    }

    const LargeFileQuery &m_query;
    const ExcludedTexts &m_excluded;
    const FileUrl m_folder;
    LargeFileListener &m_listener;
    const Judge m_mayBeDeleted;
    std::stop_source m_end;

    std::mutex m_mutex; ///< one thing at a time for the listener
    bool m_isComplete = true;
};

/// What one thread of the walk comes across.
class SearchVisitor final : public DirectoryVisitor
{
public:
    explicit SearchVisitor(FolderSearch &search) : m_search(search) {}

    qint64 items() const { return m_items; }

    bool shouldEnter(const WalkedFolder &parent, const char *name) override
    {
        ++m_items;
        if (isPackageName(name))
            return false;
        // The text of an excluded folder is part of the text of all that lies within.
        return !m_search.hasExclusions() ||
               !m_search.isExcluded(m_search.urlOf(parent, name, FileUrlKind::Folder));
    }

    void found(const WalkedEntry &entry) override
    {
        ++m_items;
        if (entry.status->kind != FileKind::Regular)
            return;
        const qint64 size = byteCountOf(entry.status->size);
        if (size >= kSmallestLargeFile)
            m_search.take(m_search.urlOf(entry.folder, entry.name, FileUrlKind::File), size);
    }

    void failed(const WalkedFolder &folder, const char *name, int error) override
    {
        m_search.cannotList(m_search.urlOf(folder, name, FileUrlKind::Folder), error);
    }

    void statusFailed(const WalkedFolder &folder, const char *name, int error) override
    {
        ++m_items;
        m_search.cannotRead(m_search.urlOf(folder, name, FileUrlKind::File), error);
    }

private:
    FolderSearch &m_search;
    qint64 m_items = 0;
};

/// Whether a failure to open means that there is nothing to open: no such entry, or a link that
/// leads nowhere.
bool isMissing(const SystemCalls &calls, const AnchoredPath &place, int error)
{
    if (error != ELOOP && error != ENOTDIR) // which of both a link gives is up to the system
        return error == ENOENT;
    const AnchoredEntry entry = anchoredEntry(place);
    const auto around = openAnchored(calls, entry.folder, Descent::Strict);
    if (!around)
        return false;
    const auto behind = calls.kindBehind(around->get(), entry.name.constData());
    return !behind && behind.error() == ENOENT;
}

/// Opens a folder of the query. Nothing when it is missing, or when it cannot be opened, which the
/// listener is told.
std::optional<FileDescriptor> openSearched(const SystemCalls &calls, const FileAccess &access,
                                           const FileUrl &folder, FolderSearch &search)
{
    const auto place = access.anchoredPath(folder);
    if (!place) {
        search.cannotList(folder, EACCES);
        return std::nullopt;
    }
    auto opened = openOnVolume(calls, *place);
    if (opened)
        return std::move(*opened);
    if (opened.error() == EXDEV)
        search.isOnAnotherDisk(folder);
    else if (!isMissing(calls, *place, opened.error()))
        search.cannotList(folder, opened.error());
    return std::nullopt;
}

qint64 walk(const SystemCalls &calls, FileDescriptor folder, FolderSearch &search, unsigned threads)
{
    std::vector<SearchVisitor> visitors(threads == 0 ? usefulWalkThreads() : threads,
                                        SearchVisitor(search));
    std::vector<DirectoryVisitor *> team;
    team.reserve(visitors.size());
    for (SearchVisitor &visitor : visitors)
        team.push_back(&visitor);
    walkDirectory(calls, std::move(folder), {}, search.end(), team);

    qint64 items = 0;
    for (const SearchVisitor &visitor : visitors)
        items += visitor.items();
    return items;
}

} // namespace

bool UnreadablePlace::isOnAnotherDisk() const
{
    return error == EXDEV;
}

FileUrls searchURLs(const FileUrl &homeFolder)
{
    FileUrls urls;
    for (const char *name : kFolderNames)
        urls.append(homeFolder.appending(name, FileUrlKind::Folder));
    return urls;
}

FileUrls searchURLs(const HomeLayout &layout)
{
    return layout.kind() == HomeKind::Freedesktop ? layout.searchFolders()
                                                  : searchURLs(layout.home());
}

SearchOutcome searchLargeFiles(const SystemCalls &calls, FileAccess &access,
                               const LargeFileQuery &query, LargeFileListener &listener,
                               const std::stop_token &stop, unsigned threads)
{
    const AccessScope scope(access);
    const ExcludedTexts excluded(query.excludedTexts);
    const FolderSearch::Judge judge = [&](const FileUrl &file) {
        const auto place = access.anchoredPath(file);
        return place && mayBeDeleted(calls, *place);
    };
    SearchOutcome outcome;
    outcome.isComplete = true;
    for (const FileUrl &folder : query.searchURLs) {
        FolderSearch search(query, excluded, folder, listener, judge);
        const std::stop_callback endWithAll(stop, [&search] { search.endNow(); });
        if (search.isExcluded(folder))
            continue;
        auto opened =
            stop.stop_requested() ? std::nullopt : openSearched(calls, access, folder, search);
        if (opened) {
            listener.searching(folder);
            outcome.items += walk(calls, std::move(*opened), search, threads);
        }
        outcome.isComplete = outcome.isComplete && search.isComplete();
    }
    outcome.isComplete = outcome.isComplete && !stop.stop_requested();
    return outcome;
}
