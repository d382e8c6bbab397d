#pragma once

#include "slices/plan/CleaningPlan.h"
#include "slices/removal/AsideNames.h"

#include <QString>
#include <optional>
#include <stop_token>

/// A note on the disk of the locations that a cleaning takes entries of aside before it removes
/// them (ExactRemoval). It stands from before the first such step until the cleaning has ended. So
/// whatever kills the cleaning, the next one knows where something may still have a private name,
/// and gives it its own name back, whatever it cleans itself.
///
/// Best effort: on a full disk there may be no note. Then the entries get their names back when
/// their own folder is cleaned again. One for each cleaning, used on the thread that cleans.
class CleaningNote final
{
public:
    /// `folder` is where the settings are kept; the note is a file beside them.
    CleaningNote(const SystemCalls &calls, QString folder);

    /// Gives what killed cleanings have left under private names its own names back, and returns
    /// what could not get it. The caller holds the access.
    QList<CleaningRefusal> putBack(const FileAccess &access, const std::stop_token &stop);

    /// Writes the note, unless there is nothing to clean.
    void begin(const CleaningPlan &plan);
    /// Where the cleaning notes what lies in slots; nothing before it begins, or without a note.
    AsideNames *names() { return m_names ? &*m_names : nullptr; }
    /// The cleaning has ended in order. What is still left of others stays noted.
    void end();

private:
    QByteArrayList read() const;
    bool write(const QByteArrayList &lines) const;

    const SystemCalls &m_calls;
    QString m_folder;
    QByteArrayList m_unfinished; ///< the lines of the locations in which something is left
    std::optional<AsideNames> m_names;
    bool m_hasBegun = false;
};
