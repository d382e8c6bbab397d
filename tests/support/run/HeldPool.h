#pragma once

#include <QSemaphore>
#include <QThreadPool>
#include <atomic>
#include <chrono>

/// Keeps all threads of the toolkit's global pool busy. Whoever hands work to the pool and waits
/// for it waits until a limit is over; then the pool goes on and wasWaitedFor() tells of it.
class HeldPool final
{
public:
    HeldPool()
    {
        const int count = pool().maxThreadCount();
        for (int i = 0; i < count; ++i)
            pool().start([this] { hold(); });
        m_begun.acquire(count);
    }
    ~HeldPool()
    {
        m_released.release(pool().maxThreadCount());
        pool().waitForDone();
    }
    HeldPool(const HeldPool &) = delete;
    HeldPool &operator=(const HeldPool &) = delete;

    /// Whether the limit was reached. Ask after what might wait.
    bool wasWaitedFor() const { return m_wasWaitedFor; }

private:
    static constexpr std::chrono::seconds kLimit{5};

    static QThreadPool &pool() { return *QThreadPool::globalInstance(); }

    void hold()
    {
        m_begun.release();
        if (!m_released.tryAcquire(1, static_cast<int>(std::chrono::milliseconds(kLimit).count())))
            m_wasWaitedFor = true;
    }

    QSemaphore m_begun;
    QSemaphore m_released;
    std::atomic<bool> m_wasWaitedFor = false;
};
