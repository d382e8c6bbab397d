#pragma once

#include "largefiles/search/File.h"
#include "platform/files/FileAccess.h"
#include "slices/home/HomeLayout.h"

#include <QStringList>
#include <functional>
#include <stop_token>

class SystemCalls;

/// In bytes: more than 100 MB.
inline constexpr qint64 kSmallestLargeFile = 100'000'001;

/// The folders of a home that are searched, in this order.
FileUrls searchURLs(const FileUrl &homeFolder);
/// The folders of a home of either kind: the folders above, or those that a freedesktop home names.
FileUrls searchURLs(const HomeLayout &layout);

/// What could not be read, and why.
struct UnreadablePlace
{
    FileUrl url;
    int error = 0; ///< errno

    /// It could be read, but it is not on the home's disk, and is never cleaned.
    bool isOnAnotherDisk() const;
};

/// What is searched, and what is left out of it.
struct LargeFileQuery
{
    FileUrls searchURLs;
    /// An item is left out when its URL's text contains one of these, word for word, anywhere. So
    /// "file:///…/Movies/a" leaves "file:///…/Movies/ab.mov" out as well. Empty texts exclude
    /// nothing.
    QStringList excludedTexts;
    /// Whether a path is listed already; nothing is for an empty function. Asked on the threads of
    /// the search, one at a time.
    std::function<bool(const QByteArray &path)> isListed;
};

/// Is told what a search comes across: one thing at a time, but on any of the threads of the
/// search. Calls must not throw.
class LargeFileListener
{
public:
    virtual ~LargeFileListener() = default;

    /// The search of one of the folders begins. Not called for a folder that does not exist.
    virtual void searching(const FileUrl &folder) = 0;
    /// A file, with its size and size text, and whether it may be deleted.
    virtual void found(const File &file) = 0;
    virtual void unreadable(const UnreadablePlace &place) = 0;
};

struct SearchOutcome
{
    qint64 items = 0;        ///< files and folders looked at
    bool isComplete = false; ///< false when it was stopped, or something could not be read
};

/// Finds every regular file of kSmallestLargeFile bytes or more in the folders of the query, one
/// folder after the other. It does not enter hidden items or packages, does not follow links and
/// does not cross mount points. It does not even look into what the query excludes. Deep or odd
/// trees do not trouble it.
///
/// It skips a folder of the query that does not exist. It reports a folder of the query on another
/// disk, and skips it. When a folder cannot be listed, it logs that ("URL, reason") and ends the
/// search of the folder of the query in which that folder lies. When the status of a file cannot be
/// read, it logs that and skips the file.
///
/// Holds one access of its own. Any thread but the main one; blocks until it is done or stopped; it
/// looks for a stop at every entry. Uses up to `threads` threads; 0 means as many as pay. With one
/// thread files are found in the order in which the folders list them.
SearchOutcome searchLargeFiles(const SystemCalls &calls, FileAccess &access,
                               const LargeFileQuery &query, LargeFileListener &listener,
                               const std::stop_token &stop, unsigned threads = 0);
