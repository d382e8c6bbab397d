#include "slices/probe/UserDirs.h"

#include <algorithm>

namespace {

constexpr QByteArrayView kHome("$HOME");

bool isBlank(char character)
{
    return character == ' ' || character == '\t';
}

void skipBlanks(QByteArrayView &rest)
{
    while (!rest.isEmpty() && isBlank(rest.front()))
        rest = rest.sliced(1);
}

bool skip(QByteArrayView &rest, char expected)
{
    skipBlanks(rest);
    if (rest.isEmpty() || rest.front() != expected)
        return false;
    rest = rest.sliced(1);
    return true;
}

bool isOfName(char character)
{
    return (character >= 'A' && character <= 'Z') || character == '_';
}

/// The name that begins here, "XDG_…_DIR", or nothing.
QByteArray takeName(QByteArrayView &rest)
{
    const auto *const end = std::find_if_not(rest.begin(), rest.end(), isOfName);
    const QByteArrayView name = rest.first(end - rest.begin());
    rest = rest.sliced(name.size());
    const bool isFolderName = name.startsWith("XDG_") && name.endsWith("_DIR");
    return isFolderName ? name.toByteArray() : QByteArray();
}

/// All names anywhere in the line.
QByteArrayList namesIn(QByteArrayView line)
{
    QByteArrayList names;
    for (qsizetype at = line.indexOf("XDG_"); at >= 0; at = line.indexOf("XDG_")) {
        line = line.sliced(at);
        names.append(takeName(line));
    }
    names.removeAll(QByteArray());
    return names;
}

/// The path between the quotes, "$HOME" or absolute, its escapes undone; empty when no reader takes
/// the text for a path. Nothing when the quote is not closed, or when a shell would replace the
/// text by something else.
std::optional<QByteArray> takeQuoted(QByteArrayView &rest)
{
    if (!skip(rest, '"'))
        return std::nullopt;
    QByteArray value;
    if (rest.startsWith(kHome)) {
        value = kHome.toByteArray();
        rest = rest.sliced(kHome.size());
        if (!rest.startsWith('/') && !rest.startsWith('"'))
            return std::nullopt; // another variable, whose name begins like this one
    }
    const bool isPath = !value.isEmpty() || rest.startsWith('/');
    while (!rest.isEmpty() && rest.front() != '"') {
        if (rest.front() == '$' || rest.front() == '`' || rest.front() == '\0')
            return std::nullopt;
        if (rest.front() == '\\')
            rest = rest.sliced(1);
        if (rest.isEmpty() || rest.front() == '\0') // no path holds a NUL
            return std::nullopt;
        value += rest.front();
        rest = rest.sliced(1);
    }
    if (!skip(rest, '"'))
        return std::nullopt;
    return isPath ? value : QByteArray();
}

bool isAtEnd(QByteArrayView rest)
{
    skipBlanks(rest);
    return rest.isEmpty() || rest.front() == '#';
}

QByteArray withoutCarriageReturn(const QByteArray &line)
{
    return line.endsWith('\r') ? line.chopped(1) : line;
}

/// "XDG_…_DIR" and what it says; nothing for a line that does not follow the rules.
std::optional<std::pair<QByteArray, QByteArray>> understood(QByteArrayView rest)
{
    skipBlanks(rest);
    const QByteArray name = takeName(rest);
    if (name.isEmpty() || !skip(rest, '='))
        return std::nullopt;
    const auto value = takeQuoted(rest);
    return value && isAtEnd(rest) ? std::optional(std::pair(name, *value)) : std::nullopt;
}

} // namespace

UserDirs UserDirs::parse(const QByteArray &text)
{
    UserDirs found;
    for (const QByteArray &line : text.split('\n'))
        found.readLine(withoutCarriageReturn(line));
    return found;
}

void UserDirs::readLine(const QByteArray &line)
{
    QByteArrayView rest(line);
    if (isAtEnd(rest))
        return;
    const auto said = understood(rest);
    if (!said) {
        for (const QByteArray &name : namesIn(rest))
            m_unclear.insert(name);
    } else if (!said->second.isEmpty()) {
        m_values.insert(said->first, said->second);
    }
}

std::optional<QByteArray> UserDirs::path(const QByteArray &name, const QByteArray &homePath) const
{
    const auto found = m_values.constFind(name);
    if (found == m_values.constEnd())
        return std::nullopt;
    return found->startsWith(kHome) ? homePath + found->sliced(kHome.size()) : *found;
}

QByteArrayList UserDirs::allBut(const QByteArray &name, const QByteArray &homePath) const
{
    QByteArrayList paths;
    for (const QByteArray &other : m_values.keys()) {
        if (other != name)
            paths.append(*path(other, homePath));
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

bool UserDirs::isUnclearBut(const QByteArray &name) const
{
    return std::any_of(m_unclear.begin(), m_unclear.end(),
                       [&](const QByteArray &unclear) { return unclear != name; });
}
