#pragma once

#include "tests/support/calls/WatchedSystemCalls.h"

#include <QByteArray>
#include <cerrno>
#include <condition_variable>
#include <mutex>

/// A gate in the way of the calls about one name: the first of these calls waits there until the
/// test lets it through.
class Gate final
{
public:
    /// Calls about the forbidden name fail for lack of rights.
    explicit Gate(QByteArray name, QByteArray forbidden = {})
        : m_name(std::move(name)),
          m_forbidden(std::move(forbidden)),
          calls([this](int, WatchedCall, const char *about) { return passed(about); })
    {
    }

    /// Waits until a call stands at the gate.
    void awaitArrival()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_hasArrived; });
    }
    void open()
    {
        const std::scoped_lock lock(m_mutex);
        m_isOpen = true;
        m_changed.notify_all();
    }

private:
    int passed(const char *name)
    {
        if (!m_forbidden.isEmpty() && name == m_forbidden)
            return EACCES;
        std::unique_lock lock(m_mutex);
        if (name != m_name || m_hasArrived)
            return 0;
        m_hasArrived = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_isOpen; });
        return 0;
    }

    const QByteArray m_name;
    const QByteArray m_forbidden;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_hasArrived = false;
    bool m_isOpen = false;

public:
    const WatchedSystemCalls calls;
};
