#pragma once

#include "platform/files/FileUrl.h"

#include <QCoreApplication>
#include <QStringList>

/// Describes a search and its result in words, for the line below the list. A value.
class SearchStatus final
{
    Q_DECLARE_TR_FUNCTIONS(SearchStatus)

public:
    void begin();
    void searching(const FileUrl &folder) { m_folder = folder; }
    void unreadable(const FileUrl &place) { m_unreadable.append(place.displayPath()); }
    /// A folder that is left out, because nothing is ever cleaned there.
    void onAnotherDisk(const FileUrl &folder) { m_elsewhere.append(folder.displayPath()); }
    /// The search ran to its end, or was ended before that.
    void end(bool ranToItsEnd);

    /// One line, for this many listed files; empty before the first search.
    QString text(int fileCount) const;
    /// What stands in the list while it is empty.
    QString emptyText() const;
    /// What could not be read and the folders that were left out: one on each line, and as many as
    /// people want to see.
    QString details() const;

private:
    enum class State { New, Searching, Done, Stopped };

    QString countText(int fileCount) const;

    State m_state = State::New;
    FileUrl m_folder;
    QStringList m_unreadable;
    QStringList m_elsewhere;
};
