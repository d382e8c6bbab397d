#include "platform/LooseThreads.h"

#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>

namespace {

struct LooseThread
{
    bool hasEnded = false;
    std::thread thread;
};

/// All of them. Those that have ended are joined later, for one cannot join itself.
class LooseThreads final
{
public:
    /// Never destroyed: a thread may outlast everything else.
    static LooseThreads &instance()
    {
        static LooseThreads &threads = *new LooseThreads;
        return threads;
    }

    void run(std::function<void()> work);
    bool wait(std::chrono::milliseconds atMost);

private:
    LooseThreads() = default;

    void end(LooseThread &ended);
    void joinEnded();

    std::mutex m_mutex; ///< guards all
    std::condition_variable m_changed;
    std::list<LooseThread> m_threads;
};

void LooseThreads::run(std::function<void()> work)
{
    const std::scoped_lock lock(m_mutex);
    joinEnded();
    LooseThread &added = m_threads.emplace_back();
    added.thread = std::thread([this, &added, work = std::move(work)]() mutable {
        work();
        work = nullptr; // what it held on to goes before its end is told
        end(added);
    });
}

void LooseThreads::end(LooseThread &ended)
{
    {
        const std::scoped_lock lock(m_mutex);
        ended.hasEnded = true;
    }
    m_changed.notify_all();
}

bool LooseThreads::wait(std::chrono::milliseconds atMost)
{
    std::unique_lock lock(m_mutex);
    const bool haveEnded = m_changed.wait_for(
        lock, atMost, [this] { return std::ranges::all_of(m_threads, &LooseThread::hasEnded); });
    joinEnded();
    return haveEnded;
}

void LooseThreads::joinEnded()
{
    m_threads.remove_if([](LooseThread &loose) {
        if (loose.hasEnded)
            loose.thread.join();
        return loose.hasEnded;
    });
}

} // namespace

void runLoose(std::function<void()> work)
{
    LooseThreads::instance().run(std::move(work));
}

bool waitForLooseThreads(std::chrono::milliseconds atMost)
{
    return LooseThreads::instance().wait(atMost);
}
