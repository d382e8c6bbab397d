#pragma once

#include "platform/files/FileAccess.h"

#include <QByteArrayList>
#include <QString>
#include <stop_token>
#include <vector>

class SystemCalls;

/// Finds what a killed cleaning has left under private names, and gives it its own names back. See
/// ExactRemoval. Used once, on one thread; not the main thread: it walks whole trees, but enters no
/// links and no other volumes.
class AsideSearch final
{
public:
    /// `noteFolder` holds the notes of the slots' names (AsideNames).
    AsideSearch(const SystemCalls &calls, QString noteFolder, std::stop_token stop);

    /// Looks in a folder and in all below.
    void lookThrough(const AnchoredPath &folder);
    /// Looks in one folder alone.
    void lookIn(const AnchoredPath &folder);

    /// The raw paths, below their anchor, of what got its name back.
    const QByteArrayList &found() const { return m_found; }
    /// Of what still has its private name: its own is taken, or the system refused.
    const QByteArrayList &left() const { return m_left; }
    /// Whether all was seen that there was to see.
    bool isComplete() const { return m_isComplete; }

private:
    QByteArrayList putBackIn(const AnchoredPath &folder);
    QByteArray takenOutOfSlot(int folder, const char *slot) const;

    const SystemCalls &m_calls;
    QString m_noteFolder;
    std::stop_token m_stop;
    std::vector<char> m_space;
    QByteArrayList m_found;
    QByteArrayList m_left;
    bool m_isComplete = true;
};
