#include "app/settings/SettingsWriter.h"

SettingsWriter::SettingsWriter(SettingsFile file, Report report)
    : m_file(std::move(file)),
      m_report(std::move(report)),
      m_thread([this](const std::stop_token &stop) { run(stop); })
{
}

void SettingsWriter::post(const QByteArray &text, Replace replace)
{
    {
        const std::lock_guard lock(m_mutex);
        m_text = text;
        if (replace == Replace::Anything)
            m_replace = replace;
        m_isWaiting = true;
    }
    m_changed.notify_all();
}

SaveOutcome SettingsWriter::flush()
{
    std::unique_lock lock(m_mutex);
    if (!m_isWaiting && !m_isSaving && !m_last.isWell()) {
        m_isWaiting = true;
        m_changed.notify_all();
    }
    m_changed.wait(lock, [this] { return !m_isWaiting && !m_isSaving; });
    return m_last;
}

void SettingsWriter::run(const std::stop_token &stop)
{
    std::unique_lock lock(m_mutex);
    // What waits when the stop is asked for is still saved.
    while (m_changed.wait(lock, stop, [this] { return m_isWaiting; }))
        save(lock);
}

void SettingsWriter::save(std::unique_lock<std::mutex> &lock)
{
    m_isWaiting = false;
    m_isSaving = true;
    const QByteArray text = m_text;
    const Replace replace = std::exchange(m_replace, Replace::OnlyWhatIsKnown);
    lock.unlock();

    const SaveOutcome outcome = m_file.save(text, replace);
    m_report(outcome);

    lock.lock();
    if (!outcome.isWell() && replace == Replace::Anything)
        m_replace = replace;
    m_last = outcome;
    m_isSaving = false;
    m_changed.notify_all();
}
