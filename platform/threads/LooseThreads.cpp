#include "platform/threads/LooseThreads.h"

#include <algorithm>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

namespace {

struct LooseThread
{
    bool hasEnded = false;
    std::thread thread;
};

/// All of them. Shared with each, for one may outlast everything else.
struct LooseThreads
{
    ~LooseThreads()
    {
        for (LooseThread &loose : threads)
            loose.thread.detach();
    }

    /// One cannot join itself: those that have ended wait for the next who comes by.
    void joinEnded()
    {
        threads.remove_if([](LooseThread &loose) {
            if (loose.hasEnded)
                loose.thread.join();
            return loose.hasEnded;
        });
    }

    std::mutex mutex; ///< guards all
    std::condition_variable changed;
    std::list<LooseThread> threads;
};

std::shared_ptr<LooseThreads> looseThreads()
{
    static const auto all = std::make_shared<LooseThreads>();
    return all;
}

} // namespace

void runLoose(std::function<void()> work)
{
    const auto all = looseThreads();
    const std::scoped_lock lock(all->mutex);
    all->joinEnded();
    LooseThread &added = all->threads.emplace_back();
    added.thread = std::thread([all, &added, work = std::move(work)]() mutable {
        work();
        work = nullptr; // what it held on to goes before its end is told
        {
            const std::scoped_lock ending(all->mutex);
            added.hasEnded = true;
        }
        all->changed.notify_all();
    });
}

bool waitForLooseThreads(std::chrono::milliseconds atMost)
{
    const auto all = looseThreads();
    std::unique_lock lock(all->mutex);
    const bool haveEnded = all->changed.wait_for(
        lock, atMost, [&] { return std::ranges::all_of(all->threads, &LooseThread::hasEnded); });
    all->joinEnded();
    return haveEnded;
}
