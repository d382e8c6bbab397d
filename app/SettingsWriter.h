#pragma once

#include "app/SettingsFile.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

/// How one save ended; an empty message means well.
struct SaveOutcome
{
    QString message;
    bool isConflict = false; ///< another program had changed the file
};

/// Saves contents in a thread of its own, one after the other; of contents that wait, only the
/// newest is saved. Destroying it saves what waits.
class SettingsWriter final
{
public:
    /// `report` is called in the writer's thread after every save.
    SettingsWriter(SettingsFile file, std::function<void(const SaveOutcome &)> report);
    ~SettingsWriter();
    SettingsWriter(const SettingsWriter &) = delete;
    SettingsWriter &operator=(const SettingsWriter &) = delete;

    /// Hands over a content; never waits for the disk. Any thread.
    void post(SettingsContent content, Replace replace);

    /// Waits until nothing is waiting any more; the last save's outcome. Any thread.
    SaveOutcome wait();

private:
    struct Job
    {
        SettingsContent content;
        Replace replace;
    };

    void run(const std::stop_token &stop);
    std::optional<Job> nextJob(const std::stop_token &stop);

    SettingsFile m_file;
    std::function<void(const SaveOutcome &)> m_report;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::optional<Job> m_waiting;
    bool m_isSaving = false;
    SaveOutcome m_last;
    std::jthread m_thread; // last: it uses all of the above
};
