#include "bench/BareWalk.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t kBufferBytes = 32'768;
// A buffer that is filled further has no room for one more long name: most likely there is more.
constexpr std::size_t kFullBufferBytes = kBufferBytes - 512;

/// A walk this bare holds every folder open in which something waits.
void allowManyDescriptors()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

/// An open folder, closed with its last user.
class OpenFolder final
{
public:
    explicit OpenFolder(int descriptor) : m_descriptor(descriptor) {}
    ~OpenFolder() { ::close(m_descriptor); }
    OpenFolder(const OpenFolder &) = delete;
    OpenFolder &operator=(const OpenFolder &) = delete;
    int get() const { return m_descriptor; }

private:
    const int m_descriptor;
};

/// Subfolders of an open folder that wait to be walked, or a block of its listing.
struct Work
{
    std::shared_ptr<const OpenFolder> folder;
    std::vector<std::string> names = {};
    std::vector<char> block = {};
};

/// The work that threads hand to each other.
class WorkPool final
{
public:
    explicit WorkPool(unsigned threads) : m_threads(threads) { update(); }

    bool wantsWork() const { return m_wanted.load(std::memory_order_relaxed) > 0; }

    void give(Work work)
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_work.push_back(std::move(work));
            update();
        }
        m_changed.notify_one();
    }

    /// Nothing once every thread is without work.
    std::optional<Work> take()
    {
        std::unique_lock lock(m_mutex);
        ++m_idle;
        update();
        if (m_idle == m_threads && m_work.empty())
            m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_work.empty() || m_idle == m_threads; });
        if (m_work.empty())
            return std::nullopt;
        --m_idle;
        Work work = std::move(m_work.back());
        m_work.pop_back();
        update();
        return work;
    }

private:
    /// One piece for each thread without work, and one more for each thread but one.
    void update()
    {
        m_wanted.store(static_cast<int>(m_idle + m_threads - 1) - static_cast<int>(m_work.size()),
                       std::memory_order_relaxed);
    }

    const unsigned m_threads;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Work> m_work;
    unsigned m_idle = 0;
    std::atomic<int> m_wanted = 0;
};

/// One thread of the walk.
class BareWalker final
{
public:
    explicit BareWalker(WorkPool &pool) : m_pool(pool), m_buffer(kBufferBytes) {}

    const BareWalkResult &result() const { return m_result; }

    void run()
    {
        while (auto work = m_pool.take()) {
            m_waiting = work->names.size();
            m_levels.push_back({std::move(work->folder), std::move(work->names)});
            look(work->block.data(), work->block.size());
            walkLevels();
        }
    }

private:
    Work &top() { return m_levels.back(); }

    void walkLevels()
    {
        while (!m_levels.empty()) {
            if (top().names.empty())
                m_levels.pop_back();
            else if (m_waiting > 1 && m_pool.wantsWork())
                share();
            else
                enterNext();
        }
    }

    /// Half of what waits nearest to the start.
    void share()
    {
        const auto level = std::find_if(m_levels.begin(), m_levels.end(),
                                        [](const Work &work) { return !work.names.empty(); });
        const auto middle =
            level->names.begin() + static_cast<std::ptrdiff_t>((level->names.size() + 1) / 2);
        std::vector<std::string> half(std::make_move_iterator(level->names.begin()),
                                      std::make_move_iterator(middle));
        level->names.erase(level->names.begin(), middle);
        m_waiting -= half.size();
        m_pool.give({level->folder, std::move(half)});
    }

    void enterNext()
    {
        const std::string name = std::move(top().names.back());
        top().names.pop_back();
        --m_waiting;
        open_how how{};
        how.flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
        const auto opened =
            ::syscall(SYS_openat2, top().folder->get(), name.c_str(), &how, sizeof how);
        if (top().names.empty())
            m_levels.pop_back();
        if (opened < 0) {
            m_result.isComplete = false;
            return;
        }
        m_levels.push_back({std::make_shared<const OpenFolder>(static_cast<int>(opened))});
        status("", AT_EMPTY_PATH);
        list();
    }

    void list()
    {
        for (;;) {
            const auto filled =
                ::syscall(SYS_getdents64, top().folder->get(), m_buffer.data(), m_buffer.size());
            if (filled < 0)
                m_result.isComplete = false;
            if (filled <= 0)
                return;
            const auto bytes = static_cast<std::size_t>(filled);
            if (bytes > kFullBufferBytes && m_pool.wantsWork())
                m_pool.give({top().folder, {}, {m_buffer.data(), m_buffer.data() + bytes}});
            else
                look(m_buffer.data(), bytes);
        }
    }

    void look(const char *block, std::size_t bytes)
    {
        for (std::size_t at = 0; at < bytes;) {
            const auto *entry = reinterpret_cast<const dirent64 *>(block + at);
            at += entry->d_reclen;
            if (entry->d_name[0] != '.')
                look(entry->d_name, entry->d_type);
        }
    }

    void look(const char *name, unsigned char type)
    {
        ++m_result.items;
        const bool isFolder =
            type == DT_DIR || (status(name, AT_SYMLINK_NOFOLLOW) && type == DT_UNKNOWN);
        if (!isFolder)
            return;
        top().names.emplace_back(name);
        ++m_waiting;
    }

    /// Adds up the size; true for a folder.
    bool status(const char *name, int flags)
    {
        struct statx found
        {
        };
        constexpr unsigned kMask = STATX_TYPE | STATX_MODE | STATX_UID | STATX_SIZE;
        if (::statx(top().folder->get(), name, flags | AT_NO_AUTOMOUNT, kMask, &found) != 0) {
            m_result.isComplete = false;
            return false;
        }
        if (S_ISDIR(found.stx_mode))
            return true;
        m_result.bytes += static_cast<std::int64_t>(found.stx_size);
        return false;
    }

    WorkPool &m_pool;
    std::vector<char> m_buffer;
    std::vector<Work> m_levels;
    std::size_t m_waiting = 0;
    BareWalkResult m_result;
};

} // namespace

BareWalkResult walkBarely(const char *folder, unsigned threads)
{
    allowManyDescriptors();
    const int start = ::open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (start < 0)
        return {.isComplete = false};
    WorkPool pool(threads);
    pool.give({std::make_shared<const OpenFolder>(start), {"."}});
    std::vector<BareWalker> walkers(threads, BareWalker(pool));
    {
        std::vector<std::jthread> helpers;
        for (unsigned number = 1; number < threads; ++number)
            helpers.emplace_back([&walker = walkers[number]] { walker.run(); });
        walkers[0].run();
    }
    BareWalkResult sum;
    for (const BareWalker &walker : walkers) {
        sum.bytes += walker.result().bytes;
        sum.items += walker.result().items;
        sum.isComplete = sum.isComplete && walker.result().isComplete;
    }
    return sum;
}
