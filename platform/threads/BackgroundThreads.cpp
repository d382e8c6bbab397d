#include "platform/threads/BackgroundThreads.h"

#include <algorithm>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

namespace {

struct BackgroundThread
{
    bool hasEnded = false;
    std::thread thread;
};

/// All background threads. Each thread shares it, because a thread may outlast everything else.
struct BackgroundThreads
{
    ~BackgroundThreads()
    {
        for (BackgroundThread &one : threads)
            one.thread.detach();
    }

    /// A thread cannot join itself: those that have ended wait until another thread joins them.
    void joinEnded()
    {
        threads.remove_if([](BackgroundThread &one) {
            if (one.hasEnded)
                one.thread.join();
            return one.hasEnded;
        });
    }

    std::mutex mutex; ///< guards all
    std::condition_variable changed;
    std::list<BackgroundThread> threads;
};

std::shared_ptr<BackgroundThreads> backgroundThreads()
{
    static const auto all = std::make_shared<BackgroundThreads>();
    return all;
}

} // namespace

void startBackgroundThread(std::function<void()> work)
{
    const auto all = backgroundThreads();
    const std::scoped_lock lock(all->mutex);
    all->joinEnded();
    BackgroundThread &added = all->threads.emplace_back();
    added.thread = std::thread([all, &added, work = std::move(work)]() mutable {
        work();
        work = nullptr; // destroys what it held, before its end is told
        {
            const std::scoped_lock ending(all->mutex);
            added.hasEnded = true;
        }
        all->changed.notify_all();
    });
}

bool waitForBackgroundThreads(std::chrono::milliseconds atMost)
{
    const auto all = backgroundThreads();
    std::unique_lock lock(all->mutex);
    const bool haveEnded = all->changed.wait_for(lock, atMost, [&] {
        return std::ranges::all_of(all->threads, &BackgroundThread::hasEnded);
    });
    all->joinEnded();
    return haveEnded;
}
