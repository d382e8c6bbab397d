#pragma once

#include "app/settings/SettingsFile.h"
#include "platform/threads/BackgroundQueue.h"

#include <condition_variable>
#include <functional>
#include <mutex>

/// Saves contents in the background, one after the other. When several contents wait, only the
/// newest is saved. Destroying it saves what waits. Used on its owner's thread.
class SettingsWriter final
{
public:
    using Report = std::function<void(const SaveOutcome &)>;

    /// `report` is called in the background after every save.
    SettingsWriter(SettingsFile file, Report report);
    ~SettingsWriter();
    SettingsWriter(const SettingsWriter &) = delete;
    SettingsWriter &operator=(const SettingsWriter &) = delete;

    /// Hands a text over; never waits for the disk. The permission to replace anything lasts until
    /// a save went well.
    void post(const QByteArray &text, Replace replace);

    /// Waits until no content waits any more, and returns how the last save ended. Tries a save
    /// that failed before once more.
    SaveOutcome flush();

private:
    void startSave();
    void save();
    bool isIdle() const { return !m_isWaiting && !m_isSaving; }

    SettingsFile m_file; ///< of the save under way
    const Report m_report;

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_becameIdle;
    QByteArray m_text;
    Replace m_replace = Replace::OnlyWhatIsKnown;
    bool m_isWaiting = false;
    bool m_isSaving = false;
    SaveOutcome m_last;

    /// A newer save that waits takes the newest content, so that no other save has to follow it.
    /// This member is the last, so that it ends before the members that it uses.
    BackgroundQueue<OwnersEnd::Wait, Queueing::LatestOnly> m_saves;
};
