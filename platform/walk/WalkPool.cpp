#include "platform/walk/WalkPool.h"

#include <system_error>

WalkPool::WalkPool(unsigned threads, std::stop_token stop, std::function<void(unsigned)> runHelper)
    : m_threads(threads), m_stop(std::move(stop)), m_runHelper(std::move(runHelper))
{
    updateWanted();
}

void WalkPool::give(WalkShare share)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_shares.push_back(std::move(share));
        if (m_shares.size() > m_idle && m_started < m_threads)
            startHelper();
        updateWanted();
    }
    m_changed.notify_one();
}

std::optional<WalkShare> WalkPool::take()
{
    std::unique_lock lock(m_mutex);
    ++m_idle;
    updateWanted();
    if (m_idle == m_started && m_shares.empty()) {
        m_isOver = true;
        m_changed.notify_all();
    }
    m_changed.wait(lock, [this] { return m_isOver || !m_shares.empty(); });
    if (m_isOver)
        return std::nullopt;
    --m_idle;
    WalkShare share = std::move(m_shares.back());
    m_shares.pop_back();
    updateWanted();
    return share;
}

/// Wants one piece for each thread without work, and one more for each helper. So a helper need not
/// wait for its next piece until another thread has finished a long listing.
void WalkPool::updateWanted()
{
    const unsigned hands = m_idle + (m_threads - m_started);
    const unsigned spare = m_threads - 1;
    m_wanted.store(static_cast<int>(hands + spare) - static_cast<int>(m_shares.size()),
                   std::memory_order_relaxed);
}

void WalkPool::startHelper()
{
    try {
        m_helpers.emplace_back(m_runHelper, m_started);
        ++m_started;
    } catch (const std::system_error &) {
        // The system gives no more threads. The thread that gave the work takes it back when it has
        // no other.
    }
}
