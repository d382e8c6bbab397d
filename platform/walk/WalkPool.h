#pragma once

#include "platform/walk/WalkShare.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

/// Shares work among the threads of one walk: a thread that has too much hands work over, a thread
/// that has none waits for some. The first thread is the caller's. The others are started when
/// there is work for them, so that a small folder needs no thread. Each of these threads may call
/// any function.
class WalkPool final
{
public:
    /// `runHelper` is called on each further thread, with its number from 1 on; it must take work
    /// until there is none.
    WalkPool(unsigned threads, std::stop_token stop, std::function<void(unsigned)> runHelper);
    /// Waits for the helpers.
    ~WalkPool() = default;

    /// Whether more work should lie ready for the other threads. A hint: it costs no lock.
    bool wantsWork() const { return m_wanted.load(std::memory_order_relaxed) > 0; }

    void give(WalkShare share);

    /// The next piece of work; waits for it. Nothing once all threads have run out of work.
    std::optional<WalkShare> take();

    /// Whether the walk is to end: every thread then drops its work and comes for more.
    bool isStopped() const { return m_stop.stop_requested(); }

private:
    void updateWanted();
    void startHelper();

    const unsigned m_threads;
    const std::stop_token m_stop;
    const std::function<void(unsigned)> m_runHelper;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<WalkShare> m_shares;
    unsigned m_idle = 0;
    unsigned m_started = 1;
    bool m_isOver = false;
    std::atomic<int> m_wanted = 0;

    std::vector<std::jthread> m_helpers; ///< the last member: joined while the others still live
};
