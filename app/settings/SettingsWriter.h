#pragma once

#include "app/settings/SettingsFile.h"
#include "platform/threads/BackgroundQueue.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

/// Saves contents in the background, one after the other. When several contents wait, only the
/// newest is saved. Looks at the file between two saves, so that a look never takes a save under
/// way for another program's. Destroying it saves what waits. Used on its owner's thread.
class SettingsWriter final
{
public:
    using Report = std::function<void(const SaveOutcome &)>;
    using LookReport = std::function<void(const SettingsLook &)>;

    /// `report` is called in the background after every save.
    SettingsWriter(SettingsFile file, Report report);
    ~SettingsWriter();
    SettingsWriter(const SettingsWriter &) = delete;
    SettingsWriter &operator=(const SettingsWriter &) = delete;

    /// Hands a text over; never waits for the disk. The permission to replace anything lasts until
    /// a save went well. `takenOver`: see SettingsFile::save().
    void post(const QByteArray &text, Replace replace, const QByteArray &takenOver = {});

    /// Looks at the file once what waits is saved, and calls `report` in the background.
    void look(LookReport report);

    /// Waits until no content waits any more, and returns how the last save ended. Tries a save
    /// that failed before once more.
    SaveOutcome flush();

private:
    void startWork();
    void save();
    void reportLooks();
    bool isIdle() const { return !m_isWaiting && !m_isSaving; }

    SettingsFile m_file; ///< of the save under way
    const Report m_report;

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_becameIdle;
    QByteArray m_text;
    Replace m_replace = Replace::OnlyWhatIsKnown;
    QByteArray m_takenOver;
    bool m_isWaiting = false;
    bool m_isSaving = false;
    SaveOutcome m_last;
    std::vector<LookReport> m_looks; ///< are still to be reported to

    /// A newer task that waits does all that is wanted, so that no other has to follow it. This
    /// member is the last, so that it ends before the members that it uses.
    BackgroundQueue<OwnersEnd::Wait, Queueing::LatestOnly> m_work;
};
