#pragma once

#include "app/settings/SettingsFile.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

/// Saves contents in a thread of its own, one after the other; of contents that wait, only the
/// newest is saved. Destroying it saves what waits.
class SettingsWriter final
{
public:
    using Report = std::function<void(const SaveOutcome &)>;

    /// `report` is called in the writer's thread after every save.
    SettingsWriter(SettingsFile file, Report report);
    SettingsWriter(const SettingsWriter &) = delete;
    SettingsWriter &operator=(const SettingsWriter &) = delete;

    /// Hands a text over; never waits for the disk. The leave to replace anything lasts until a
    /// save went well.
    void post(const QByteArray &text, Replace replace);

    /// Waits until nothing is waiting any more, and tells how the last save ended. One that failed
    /// before is tried once more.
    SaveOutcome flush();

private:
    void run(const std::stop_token &stop);
    void save(std::unique_lock<std::mutex> &lock);

    SettingsFile m_file; ///< the thread's own
    const Report m_report;

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable_any m_changed;
    QByteArray m_text;
    Replace m_replace = Replace::OnlyWhatIsKnown;
    bool m_isWaiting = false;
    bool m_isSaving = false;
    SaveOutcome m_last;

    std::jthread m_thread; ///< last, so that it is joined first
};
