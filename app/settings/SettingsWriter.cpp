#include "app/settings/SettingsWriter.h"

#include <utility>

SettingsWriter::SettingsWriter(SettingsFile file, Report report)
    : m_file(std::move(file)), m_report(std::move(report))
{
}

/// Waits until everything is saved: the queue alone would drop the text that waits.
SettingsWriter::~SettingsWriter()
{
    std::unique_lock lock(m_mutex);
    m_becameIdle.wait(lock, [this] { return isIdle(); });
}

void SettingsWriter::post(const QByteArray &text, Replace replace, const QByteArray &takenOver)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_text = text;
        if (replace == Replace::Anything)
            m_replace = replace;
        if (!takenOver.isEmpty())
            m_takenOver = takenOver;
        m_isWaiting = true;
    }
    startWork();
}

void SettingsWriter::look(LookReport report)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_looks.push_back(std::move(report));
    }
    startWork();
}

SaveOutcome SettingsWriter::flush()
{
    std::unique_lock lock(m_mutex);
    if (isIdle() && !m_last.isWell()) {
        m_isWaiting = true;
        lock.unlock();
        startWork();
        lock.lock();
    }
    m_becameIdle.wait(lock, [this] { return isIdle(); });
    return m_last;
}

/// A save under way is never cut off: it ignores the stop.
void SettingsWriter::startWork()
{
    m_work.run([this](const std::stop_token &) {
        save();
        reportLooks();
    });
}

void SettingsWriter::save()
{
    std::unique_lock lock(m_mutex);
    if (!std::exchange(m_isWaiting, false))
        return; // the save before has taken the text
    m_isSaving = true;
    const QByteArray text = m_text;
    const Replace replace = std::exchange(m_replace, Replace::OnlyWhatIsKnown);
    const QByteArray takenOver = m_takenOver;
    lock.unlock();

    const SaveOutcome outcome = m_file.save(text, replace, takenOver);
    m_report(outcome);

    lock.lock();
    if (!outcome.isWell() && replace == Replace::Anything)
        m_replace = replace;
    m_last = outcome;
    m_isSaving = false;
    m_becameIdle.notify_all();
}

/// All who wait get the same answer: they asked before the look.
void SettingsWriter::reportLooks()
{
    std::vector<LookReport> reports;
    {
        const std::scoped_lock lock(m_mutex);
        reports.swap(m_looks);
    }
    if (reports.empty())
        return;
    const SettingsLook found = m_file.look();
    for (const LookReport &report : reports)
        report(found);
}
