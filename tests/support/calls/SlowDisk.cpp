#include "tests/support/calls/SlowDisk.h"

#include <new>
#include <utility>

void SlowDisk::hang(const QString &name)
{
    const std::scoped_lock lock(m_mutex);
    m_hangsAt = name;
    m_hangs = true;
}

void SlowDisk::answer()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_hangs = false;
    }
    m_changed.notify_all();
}

int SlowDisk::waiting() const
{
    const std::scoped_lock lock(m_mutex);
    return m_waiting;
}

void SlowDisk::takeMemoryAt(const QString &name)
{
    const std::scoped_lock lock(m_mutex);
    m_takesMemoryAt = name;
}

QStringList SlowDisk::takeAskedHere()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_askedHere, {});
}

int SlowDisk::hear(std::string_view call)
{
    const auto name = QString::fromUtf8(call.data(), qsizetype(call.size()));
    std::unique_lock lock(m_mutex);
    if (std::this_thread::get_id() == m_here) {
        if (name != QLatin1String("status"))
            m_askedHere.append(name);
    } else if (m_hangsAt.isEmpty() || m_hangsAt == name) {
        ++m_waiting;
        m_changed.wait(lock, [this] { return !m_hangs; });
        --m_waiting;
    }
    if (std::this_thread::get_id() != m_here && name == m_takesMemoryAt)
        throw std::bad_alloc();
    return 0;
}
