#include "tests/lint/House.h"

#include <QRegularExpression>
#include <QSet>

namespace {

using Graph = QHash<QString, QStringList>;

constexpr QLatin1String kTargetPrefix("vantor_");

/// Targets are named after their folders: vantor_platform_system stands for platform/system.
QString folderOfTarget(const QString &target)
{
    return target.sliced(kTargetPrefix.size()).replace(u'_', u'/');
}

QString folderOf(const QString &path)
{
    return path.left(path.lastIndexOf(u'/'));
}

/// "platform/system/SystemHomes" for its header and for its source on any system.
QString unitOf(const QString &path)
{
    static const QRegularExpression ending(QStringLiteral(R"((_[a-z0-9]+)?\.(h|cpp)$)"));
    return QString(path).remove(ending);
}

/// The path in an include of one of our own files; empty for any other line. The path is a literal,
/// so it is read from the line as written.
QString includedPath(const SourceText &source, int line)
{
    static const QRegularExpression include(
        QStringLiteral(R"x(^\s*#\s*include\s*"([^"]+/[^"]+)")x"));
    return include.match(source.lines[line]).captured(1);
}

/// Walks a graph depth first and keeps the path to the present node.
class CircleSearch final
{
public:
    explicit CircleSearch(const Graph &graph) : m_graph(graph) {}

    QStringList circles()
    {
        QStringList starts = m_graph.keys();
        starts.sort();
        for (const QString &start : starts)
            enter(start);
        return m_found;
    }

private:
    void enter(const QString &node)
    {
        if (m_done.contains(node))
            return;
        const qsizetype before = m_way.indexOf(node);
        m_way.append(node);
        if (before >= 0) {
            m_found << m_way.sliced(before).join(QStringLiteral(" -> "));
        } else {
            for (const QString &next : m_graph.value(node))
                enter(next);
            m_done.insert(node);
        }
        m_way.removeLast();
    }

    const Graph &m_graph;
    QStringList m_way;
    QSet<QString> m_done;
    QStringList m_found;
};

} // namespace

std::optional<Room> House::roomDeclared(const QString &folder, const QString &cmakeText)
{
    static const QRegularExpression declared(
        QStringLiteral(R"(vantor_room\(\s*(CORE\s+)?LINKS\s+([^)]*)\))"));
    static const QRegularExpression blank(QStringLiteral(R"(\s+)"));
    const QRegularExpressionMatch match = declared.match(cmakeText);
    if (!match.hasMatch())
        return std::nullopt;
    Room room{folder, {}, !match.captured(1).isEmpty()};
    for (const QString &target : match.captured(2).split(blank, Qt::SkipEmptyParts)) {
        if (target.startsWith(kTargetPrefix))
            room.links << folderOfTarget(target);
    }
    return room;
}

House::House(const QList<Room> &rooms)
{
    for (const Room &room : rooms)
        m_rooms.insert(room.folder, room);
}

const Room *House::roomOf(const QString &path) const
{
    const auto room = m_rooms.constFind(folderOf(path));
    return room == m_rooms.constEnd() ? nullptr : &*room;
}

bool House::mayInclude(const QString &room, const QString &other) const
{
    QSet<QString> seen;
    QStringList waiting{room};
    while (!waiting.isEmpty()) {
        const QString next = waiting.takeLast();
        if (next == other)
            return true;
        if (!seen.contains(next))
            waiting << m_rooms.value(next).links;
        seen.insert(next);
    }
    return false;
}

QStringList House::includesBeyondLinks(const SourceText &source) const
{
    QStringList found;
    const Room *room = roomOf(source.path);
    if (!room || source.path.endsWith(QStringLiteral("/main.cpp")))
        return found; // a program's main does not belong to the room beside it
    for (int line = 0; line < source.lines.size(); ++line) {
        const Room *other = roomOf(includedPath(source, line));
        if (other && !mayInclude(room->folder, other->folder))
            found << QStringLiteral("%1:%2: %3 does not link %4")
                         .arg(source.path)
                         .arg(line + 1)
                         .arg(room->folder, other->folder);
    }
    return found;
}

QStringList House::circlesOfRooms() const
{
    Graph graph;
    for (const Room &room : m_rooms)
        graph.insert(room.folder, room.links);
    return CircleSearch(graph).circles();
}

QStringList House::circlesOfUnits(const QList<SourceText> &sources)
{
    Graph graph;
    for (const SourceText &source : sources) {
        const QString unit = unitOf(source.path);
        QStringList &included = graph[unit];
        for (int line = 0; line < source.lines.size(); ++line) {
            const QString other = unitOf(includedPath(source, line));
            if (!other.isEmpty() && other != unit && !included.contains(other))
                included << other;
        }
    }
    return CircleSearch(graph).circles();
}
