#include "slices/probe/UserDirs.h"
#include "tests/soak/fuzz/FuzzTargets.h"

#include <QRegularExpression>
#include <QSet>

namespace {

const QByteArray kHome("/home/anna");
const QByteArray kDownloads("XDG_DOWNLOAD_DIR");

struct Expected
{
    QHash<QByteArray, QByteArray> paths;
    QSet<QByteArray> unclear;
};

/// One byte for each character.
QString wide(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes);
}

QRegularExpression rule(const char *pattern)
{
    return QRegularExpression(QString::fromLatin1(pattern),
                              QRegularExpression::DotMatchesEverythingOption);
}

/// The path that a quoted text means; empty when it is none.
QByteArray pathIn(const QByteArray &quoted)
{
    static const QRegularExpression escape = rule(R"(\\(.))");
    constexpr QByteArrayView kVariable("$HOME");
    const bool isBelowHome = quoted.startsWith(kVariable);
    if (!isBelowHome && !quoted.startsWith('/'))
        return {};
    const QByteArray rest = isBelowHome ? quoted.sliced(kVariable.size()) : quoted;
    return (isBelowHome ? kHome : QByteArray()) +
           wide(rest).replace(escape, QStringLiteral("\\1")).toLatin1();
}

/// What the file says, by the rules as an expression.
Expected readByRule(const QByteArray &text)
{
    static const QRegularExpression understood =
        rule(R"x(\A[ \t]*(XDG_(?:[A-Z_]*_)?DIR)(?![A-Z_])[ \t]*=[ \t]*")x"
             R"x((\$HOME(?=[/"])|(?!\$HOME))((?:[^"\\$`\x00]|\\[^\x00])*)"[ \t]*(?:#.*)?\z)x");
    static const QRegularExpression name = rule(R"(XDG_[A-Z_]*)");
    static const QRegularExpression remark = rule(R"(\A[ \t]*(#|\z))");
    Expected found;
    for (const QByteArray &written : text.split('\n')) {
        const QString line = wide(written.endsWith('\r') ? written.chopped(1) : written);
        if (remark.match(line).hasMatch())
            continue;
        if (const auto match = understood.match(line); match.hasMatch()) {
            const QByteArray path = pathIn((match.captured(2) + match.captured(3)).toLatin1());
            if (!path.isEmpty())
                found.paths.insert(match.captured(1).toLatin1(), path);
            continue;
        }
        for (auto each = name.globalMatch(line); each.hasNext();) {
            const QByteArray mentioned = each.next().captured().toLatin1();
            if (mentioned.endsWith("_DIR"))
                found.unclear.insert(mentioned);
        }
    }
    return found;
}

} // namespace

/// The reader takes from the file exactly what the rules give, and knows of each line that does not
/// follow them. No path holds a NUL, with which the system would cut it.
QByteArray findingInUserDirs(const QByteArray &input)
{
    const UserDirs dirs = UserDirs::parse(input);
    const Expected expected = readByRule(input);
    for (const QByteArray &name : expected.paths.keys() + QByteArrayList{kDownloads}) {
        const auto path = dirs.path(name, kHome);
        if (path.value_or(QByteArray()) != expected.paths.value(name))
            return "another folder for " + name + ": " + path.value_or("none");
    }
    QByteArrayList others = expected.paths.values();
    if (expected.paths.contains(kDownloads))
        others.removeOne(expected.paths.value(kDownloads));
    std::sort(others.begin(), others.end());
    if (dirs.allBut(kDownloads, kHome) != others)
        return "other folders beside the downloads";
    for (const QByteArray &name :
         QByteArrayList(expected.unclear.values()) + QByteArrayList{kDownloads}) {
        QSet<QByteArray> rest = expected.unclear;
        rest.remove(name);
        if (dirs.isUnclearBut(name) == rest.isEmpty())
            return "a line that is not understood is not noticed";
    }
    return {};
}
