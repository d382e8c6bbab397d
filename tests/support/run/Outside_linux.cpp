#include "tests/support/run/Outside.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>

namespace {

/// Runs one action at a time.
class Outside final
{
public:
    /// Waits until the thread has nothing to do: one that still starts holds locks of the
    /// allocator, and a process that is forked meanwhile would never see them released.
    Outside() : m_thread([this](const std::stop_token &stop) { serve(stop); })
    {
        run([] {});
    }

    void run(const std::function<void()> &action)
    {
        const std::scoped_lock oneAtATime(m_caller);
        std::unique_lock lock(m_mutex);
        m_action = &action;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_action; });
    }

private:
    void serve(const std::stop_token &stop)
    {
        std::unique_lock lock(m_mutex);
        while (m_changed.wait(lock, stop, [this] { return m_action != nullptr; })) {
            (*m_action)();
            m_action = nullptr;
            m_changed.notify_all();
        }
    }

    std::mutex m_caller;
    std::mutex m_mutex; ///< guards all below
    std::condition_variable_any m_changed;
    const std::function<void()> *m_action = nullptr;
    std::jthread m_thread;
};

/// A forked process has none of its parent's threads.
struct OfProcess
{
    pid_t process = 0;
    Outside *outside = nullptr;
};

OfProcess &ofThisProcess()
{
    static OfProcess found;
    return found;
}

bool isConfined()
{
    return ::prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 1;
}

} // namespace

void openOutside()
{
    OfProcess &found = ofThisProcess();
    if (found.process == ::getpid() || isConfined())
        return;
    static std::unique_ptr<Outside> owned;
    (void)owned.release(); // the parent's, which has no thread here
    owned = std::make_unique<Outside>();
    found = {::getpid(), owned.get()};
}

void doOutside(const std::function<void()> &action)
{
    if (!isConfined())
        action();
    else
        ofThisProcess().outside->run(action);
}
