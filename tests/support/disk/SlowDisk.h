#pragma once

#include "tests/support/disk/HookedSystem.h"

#include <QStringList>
#include <condition_variable>
#include <mutex>
#include <thread>

/// A disk as the main thread must be able to live with: it knows what is asked of it on the thread
/// that made it, and can be told to answer no other thread for a while. There it answers always, so
/// that what should not be asked fails a test and does not hang it.
class SlowDisk final
{
public:
    SlowDisk() = default;
    ~SlowDisk() { answer(); }
    SlowDisk(const SlowDisk &) = delete;
    SlowDisk &operator=(const SlowDisk &) = delete;

    const SystemCalls &calls() const { return m_calls; }

    /// From now on calls wait, but for those of this thread: all, or those of one name.
    void hang(const QString &name = {});
    /// Those that wait go on. Before what they belong to is destroyed.
    void answer();
    /// How many wait.
    int waiting() const;

    /// What was asked on this thread since the last call of this, but for single status calls.
    QStringList takeAskedHere();

private:
    int hear(std::string_view name);

    const std::thread::id m_here = std::this_thread::get_id();
    mutable std::mutex m_mutex; ///< guards the rest but for the calls
    std::condition_variable m_changed;
    bool m_hangs = false;
    QString m_hangsAt; ///< all calls, when empty
    int m_waiting = 0;
    QStringList m_askedHere;
    HookedSystem m_calls{[this](int, std::string_view name) { return hear(name); }};
};
