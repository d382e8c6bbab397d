#pragma once

#include "tests/lint/SourceText.h"

#include <QHash>

/// A room: a folder with a target of its own, as its CMakeLists.txt declares it. A value.
struct Room
{
    QString folder;    ///< from the top of the repository, "platform/system"
    QStringList links; ///< folders of the rooms that it links itself
    bool isCore = false;
};

/// The rooms of the repository and what ties their files together. A value; any thread.
///
/// A unit is a header with its source: "platform/files/FileUrl". An include ties the unit that
/// writes it to the unit that it names.
class House final
{
public:
    /// The room that `vantor_room` declares in the CMakeLists.txt of that folder; nothing where
    /// there is no room.
    static std::optional<Room> roomDeclared(const QString &folder, const QString &cmakeText);

    explicit House(const QList<Room> &rooms);

    const Room *roomOf(const QString &path) const;
    /// Includes of files from rooms that the file's own room links neither directly nor through
    /// others: "path:line: reason".
    QStringList includesBeyondLinks(const SourceText &source) const;
    /// The rooms that link one another in a circle, each circle as "a -> b -> a".
    QStringList circlesOfRooms() const;
    /// The same for the units of these sources.
    static QStringList circlesOfUnits(const QList<SourceText> &sources);

private:
    bool mayInclude(const QString &room, const QString &other) const;

    QHash<QString, Room> m_rooms;
};
