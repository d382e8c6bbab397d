#include "platform/threads/BackgroundThreads.h"

#include "platform/base/Indestructible.h"

#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>

namespace {

struct BackgroundThread
{
    bool hasEnded = false;
    std::thread thread;
};

/// All background threads.
struct BackgroundThreads
{
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

    std::stop_source end; ///< of the program
};

/// A thread may outlast everything else.
BackgroundThreads &backgroundThreads()
{
    static const Indestructible<BackgroundThreads> all;
    return *all;
}

} // namespace

void startBackgroundThread(std::function<void()> work)
{
    BackgroundThreads &all = backgroundThreads();
    const std::scoped_lock lock(all.mutex);
    all.joinEnded();
    BackgroundThread &added = all.threads.emplace_back();
    added.thread = std::thread([&all, &added, work = std::move(work)]() mutable {
        work();
        work = nullptr; // destroys what it held, before its end is told
        {
            const std::scoped_lock ending(all.mutex);
            added.hasEnded = true;
        }
        all.changed.notify_all();
    });
}

bool waitForBackgroundThreads(std::chrono::milliseconds atMost)
{
    BackgroundThreads &all = backgroundThreads();
    std::unique_lock lock(all.mutex);
    const bool haveEnded = all.changed.wait_for(lock, atMost, [&all] {
        return std::ranges::all_of(all.threads, &BackgroundThread::hasEnded);
    });
    all.joinEnded();
    return haveEnded;
}

void stopBackgroundThreads()
{
    backgroundThreads().end.request_stop();
}

std::stop_token endOfBackgroundThreads()
{
    return backgroundThreads().end.get_token();
}
