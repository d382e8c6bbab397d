#include "largefiles/search/SearchJob.h"

#include "largefiles/search/LargeFileList.h"
#include "largefiles/search/ListedFiles.h"

#include <QElapsedTimer>
#include <QSet>
#include <deque>
#include <mutex>
#include <variant>

namespace {

// Half of what a frame of the screen lasts.
constexpr qint64 kDeliveryMilliseconds = 8;

} // namespace

/// The last message of a search.
struct SearchEnd
{
    SearchOutcome outcome;
    FileUrls vanished;
};

/// One search. Does the file work on a background thread and keeps its messages, in order, until
/// the main thread takes them. Shared by both threads, and may outlive the job.
class SearchJob::Run final : public LargeFileListener, public std::enable_shared_from_this<Run>
{
public:
    using Message = std::variant<FileUrl, File, UnreadablePlace, SearchEnd>;

    Run(SearchJob &job, FileUrls listed)
        : m_calls(job.m_calls),
          m_access(job.m_access),
          m_sender(job.m_channel.sender()),
          m_job(&job),
          m_files(std::move(listed))
    {
    }

    void search(const LargeFileQuery &folders, const std::stop_token &stop)
    {
        QSet<QByteArray> paths;
        for (const FileUrl &file : std::as_const(m_files))
            paths.insert(file.path());
        LargeFileQuery query = folders;
        query.isListed = [&](const QByteArray &path) { return paths.contains(path); };
        const SearchOutcome outcome = searchLargeFiles(m_calls, m_access, query, *this, stop);
        say(SearchEnd{outcome, vanishedFiles(m_calls, m_access, m_files, stop)});
    }

    void searching(const FileUrl &folder) override { say(folder); }
    void found(const File &file) override
    {
        m_files.append(file.fileURL());
        say(file);
    }
    void unreadable(const UnreadablePlace &place) override { say(place); }

    /// Calls the job, if it is still there, to take messages.
    void call()
    {
        m_sender.post([job = m_job, run = shared_from_this()] { job->deliver(run); });
    }

    /// The next message. When this returned nothing, the job is called again for the message that
    /// follows.
    std::unique_ptr<const Message> next()
    {
        const std::scoped_lock lock(m_mutex);
        m_isCalled = !m_messages.empty();
        if (!m_isCalled)
            return nullptr;
        std::unique_ptr<const Message> message = std::move(m_messages.front());
        m_messages.pop_front();
        return message;
    }

private:
    template <typename Content> void say(const Content &content)
    {
        const std::scoped_lock lock(m_mutex);
        m_messages.push_back(std::make_unique<const Message>(content));
        if (!m_isCalled)
            call();
        m_isCalled = true;
    }

    const SystemCalls &m_calls;
    FileAccess &m_access;
    const ReplyChannel::Sender m_sender;
    SearchJob *const m_job; ///< for the messages, which do not outlive it
    FileUrls m_files;       ///< what the list holds once all is delivered; for the search alone

    std::mutex m_mutex; ///< guards the rest
    std::deque<std::unique_ptr<const Message>> m_messages;
    bool m_isCalled = false; ///< the job is about to take messages
};

SearchJob::SearchJob(const SystemCalls &calls, FileAccess &access, LargeFileList &list,
                     QObject *parent)
    : QObject(parent), m_calls(calls), m_access(access), m_list(list)
{
    connect(&list, &QAbstractItemModel::modelReset, this, &SearchJob::stop);
}

SearchJob::~SearchJob() = default;

void SearchJob::beginSearch(const FileUrls &folders, const QStringList &excludedPaths)
{
    m_unreadable.clear();
    m_run = std::make_shared<Run>(*this, m_list.fileURLs());
    m_searches.run([run = m_run, folders, excludedPaths](const std::stop_token &stop) {
        run->search({folders, excludedPaths, {}}, stop);
    });
}

void SearchJob::stop()
{
    if (!m_run)
        return;
    m_run.reset();
    m_searches.stop();
    Q_EMIT stopped();
}

void SearchJob::deliver(const std::shared_ptr<Run> &run)
{
    QElapsedTimer timer;
    timer.start();
    while (run == m_run) {
        if (timer.elapsed() >= kDeliveryMilliseconds)
            return run->call();
        const auto message = run->next();
        if (!message)
            return;
        std::visit([this](const auto &content) { take(content); }, *message);
    }
}

void SearchJob::take(const FileUrl &folder)
{
    Q_EMIT searching(folder);
}

void SearchJob::take(const File &file)
{
    m_list.insert(file);
}

void SearchJob::take(const UnreadablePlace &place)
{
    m_unreadable.append(place);
    Q_EMIT unreadable(place);
}

void SearchJob::take(const SearchEnd &end)
{
    m_list.remove(end.vanished);
    if (!m_run)
        return;
    m_run.reset();
    Q_EMIT finished({end.outcome.items, end.outcome.isComplete, m_unreadable});
}
