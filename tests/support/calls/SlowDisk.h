#pragma once

#include "tests/support/calls/HookedSystem.h"

#include <QStringList>
#include <condition_variable>
#include <mutex>
#include <thread>

/// A slow disk, with which the main thread must still work. It records the calls of the thread that
/// made it, and can be told to answer no other thread for a while. It always answers the thread
/// that made it, so that a forbidden call fails the test and does not hang it.
class SlowDisk final
{
public:
    SlowDisk() = default;
    ~SlowDisk() { answer(); }
    SlowDisk(const SlowDisk &) = delete;
    SlowDisk &operator=(const SlowDisk &) = delete;

    const SystemCalls &calls() const { return m_calls; }

    /// From now on calls of other threads wait: all, or those of one name.
    void hang(const QString &name = {});
    /// Lets the waiting calls go on. Call it before the objects that they use are destroyed.
    void answer();
    /// How many calls wait.
    int waiting() const;

    /// From now on calls of this name, of other threads, find no memory.
    void takeMemoryAt(const QString &name);

    /// The calls on this thread since this function was last called, without single status calls.
    QStringList takeAskedHere();

private:
    int hear(std::string_view name);

    const std::thread::id m_here = std::this_thread::get_id();
    mutable std::mutex m_mutex; ///< guards all the rest except the calls
    std::condition_variable m_changed;
    bool m_hangs = false;
    QString m_hangsAt; ///< the call that hangs; all when empty
    QString m_takesMemoryAt;
    int m_waiting = 0;
    QStringList m_askedHere;
    HookedSystem m_calls{[this](int, std::string_view name) { return hear(name); }};
};
