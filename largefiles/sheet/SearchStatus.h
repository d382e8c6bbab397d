#pragma once

#include "platform/files/FileUrl.h"

#include <QCoreApplication>
#include <QStringList>

/// What a search is about and what it came to, in words for the line below the list. A value.
class SearchStatus final
{
    Q_DECLARE_TR_FUNCTIONS(SearchStatus)

public:
    void begin();
    void searching(const FileUrl &folder) { m_folder = folder; }
    void unreadable(const FileUrl &place) { m_unreadable.append(place.displayPath()); }
    /// A folder that is left out, for nothing is ever cleaned there.
    void onAnotherDisk(const FileUrl &folder) { m_elsewhere.append(folder.displayPath()); }
    /// It ran to its end, or was ended before.
    void end(bool ranToItsEnd);

    /// One line, for this many listed files; empty before the first search.
    QString text(int fileCount) const;
    /// What stands in the list while it is empty.
    QString emptyText() const;
    /// The places that could not be read and the folders that were left out, one a line, as many as
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
