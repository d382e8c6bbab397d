#include "tests/support/SlowDisk.h"

#include <utility>

void SlowDisk::hang()
{
    const std::scoped_lock lock(m_mutex);
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

QStringList SlowDisk::takeAskedHere()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_askedHere, {});
}

int SlowDisk::hear(std::string_view name)
{
    std::unique_lock lock(m_mutex);
    if (std::this_thread::get_id() == m_here) {
        if (name != "status")
            m_askedHere.append(QString::fromUtf8(name.data(), qsizetype(name.size())));
        return 0;
    }
    ++m_waiting;
    m_changed.wait(lock, [this] { return !m_hangs; });
    --m_waiting;
    return 0;
}
