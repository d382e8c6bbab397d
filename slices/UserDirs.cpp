#include "slices/UserDirs.h"

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

/// "XDG_…_DIR", or nothing.
QByteArray takeName(QByteArrayView &rest)
{
    const auto isOfName = [](char character) {
        return (character >= 'A' && character <= 'Z') || character == '_';
    };
    const auto *const end = std::find_if_not(rest.begin(), rest.end(), isOfName);
    const QByteArrayView name = rest.first(end - rest.begin());
    rest = rest.sliced(name.size());
    const bool isFolderName = name.startsWith("XDG_") && name.endsWith("_DIR");
    return isFolderName ? name.toByteArray() : QByteArray();
}

/// What stands between the quotes, its escapes undone: "$HOME" or an absolute path. Nothing when
/// the quote is not closed, or when a shell would put something else in the place of what is
/// written.
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
    } else if (!rest.startsWith('/')) {
        return std::nullopt;
    }
    while (!rest.isEmpty() && rest.front() != '"') {
        if (rest.front() == '$' || rest.front() == '`')
            return std::nullopt;
        if (rest.front() == '\\')
            rest = rest.sliced(1);
        if (rest.isEmpty())
            return std::nullopt;
        value += rest.front();
        rest = rest.sliced(1);
    }
    return skip(rest, '"') ? std::optional(value) : std::nullopt;
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

QByteArrayList namesOf(const QByteArray &path)
{
    QByteArrayList names = path.split('/');
    names.removeIf([](const QByteArray &name) { return name.isEmpty() || name == "."; });
    return names;
}

} // namespace

UserDirs UserDirs::parse(const QByteArray &text)
{
    UserDirs found;
    for (const QByteArray &line : text.split('\n')) {
        const QByteArray clean = withoutCarriageReturn(line);
        QByteArrayView rest(clean);
        skipBlanks(rest);
        const QByteArray name = takeName(rest);
        if (name.isEmpty() || !skip(rest, '='))
            continue;
        const auto value = takeQuoted(rest);
        if (value && isAtEnd(rest))
            found.m_values.insert(name, *value);
    }
    return found;
}

std::optional<QByteArray> UserDirs::folder(const QByteArray &name, const QByteArray &homePath) const
{
    const auto path = place(name, homePath);
    return path && !hasHiddenComponent(*path) ? path : std::nullopt;
}

QByteArrayList UserDirs::allBut(const QByteArray &name, const QByteArray &homePath) const
{
    QByteArrayList folders;
    for (const QByteArray &other : m_values.keys()) {
        const auto path = other == name ? std::nullopt : place(other, homePath);
        if (path)
            folders.append(*path);
    }
    std::sort(folders.begin(), folders.end());
    return folders;
}

std::optional<QByteArray> UserDirs::place(const QByteArray &name, const QByteArray &homePath) const
{
    QByteArray value = m_values.value(name);
    if (value.startsWith(kHome))
        value.replace(0, kHome.size(), homePath);
    return pathBelowHome(value, homePath);
}

std::optional<QByteArray> pathBelowHome(const QByteArray &path, const QByteArray &homePath)
{
    if (!path.startsWith('/') || path.contains('\0'))
        return std::nullopt;
    const QByteArrayList home = namesOf(homePath);
    QByteArrayList names = namesOf(path);
    if (names.contains("..") || names.size() <= home.size() || names.first(home.size()) != home)
        return std::nullopt;
    return names.sliced(home.size()).join('/');
}

std::optional<QByteArray> linkTargetBelowHome(const QByteArray &linkPath, const QByteArray &target,
                                              const QByteArray &homePath)
{
    if (target.startsWith('/') || target.contains('\0'))
        return pathBelowHome(target, homePath);
    QByteArrayList folders = namesOf(linkPath);
    folders.removeLast();
    QByteArrayList names = namesOf(target);
    while (!names.isEmpty() && names.first() == "..") {
        if (folders.isEmpty())
            return std::nullopt;
        folders.removeLast();
        names.removeFirst();
    }
    if (names.isEmpty() || names.contains(".."))
        return std::nullopt;
    return (folders + names).join('/');
}

bool hasHiddenComponent(const QByteArray &relativePath)
{
    return relativePath.startsWith('.') || relativePath.contains("/.");
}
