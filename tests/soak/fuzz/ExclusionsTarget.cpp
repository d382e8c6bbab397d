#include "slices/exclusions/ExcludedPaths.h"
#include "tests/soak/fuzz/FuzzTargets.h"

#include <algorithm>

namespace {

/// So that a long input takes no longer than many short ones.
constexpr qsizetype kMostStrings = 8;

struct Decoded
{
    QByteArray path;
    bool isFolder = false;
};

int hexDigit(char character)
{
    static const QByteArray digits("0123456789abcdef");
    return static_cast<int>(digits.indexOf(QByteArray(1, character).toLower()));
}

/// The bytes behind the escapes; nothing where an escape is broken, or the text is no plain path.
std::optional<QByteArray> unescaped(const QByteArray &text)
{
    constexpr int kHex = 16;
    QByteArray bytes;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '?' || text[i] == '#')
            return std::nullopt;
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        const int high = i + 1 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += static_cast<char>(high * kHex + low);
        i += 2;
    }
    return bytes.contains('\0') ? std::nullopt : std::optional(bytes);
}

/// What a stored text means, by a reader of our own.
std::optional<Decoded> decoded(const QString &string)
{
    constexpr QByteArrayView kScheme("file://");
    const QByteArray text = string.toUtf8();
    if (!text.startsWith(kScheme) || !text.sliced(kScheme.size()).startsWith('/'))
        return std::nullopt;
    const auto bytes = unescaped(text.sliced(kScheme.size()));
    if (!bytes)
        return std::nullopt;
    QByteArray path;
    for (const QByteArray &name : bytes->split('/')) {
        if (name == "." || name == "..")
            return std::nullopt;
        if (!name.isEmpty())
            path += '/' + name;
    }
    if (path.isEmpty())
        return Decoded{"/", true};
    return Decoded{path, bytes->endsWith('/')};
}

QByteArray slashed(const QByteArray &path)
{
    return path.endsWith('/') ? path : path + '/';
}

/// How a candidate meets the exclusions, by one rule for one pair.
template <typename Begins>
ExclusionMatch matchOf(const FileUrls &excluded, const FileUrl &candidate, Begins begins)
{
    const auto any = [&](auto holds) {
        return std::any_of(excluded.begin(), excluded.end(), holds);
    };
    if (any([&](const FileUrl &url) { return begins(url, candidate); }))
        return ExclusionMatch::Whole;
    return any([&](const FileUrl &url) { return begins(candidate, url); })
               ? ExclusionMatch::OnTheWay
               : ExclusionMatch::None;
}

bool textIsIn(const FileUrl &part, const FileUrl &whole)
{
    return whole.absoluteString().contains(part.absoluteString());
}

bool isAround(const FileUrl &above, const FileUrl &below)
{
    return slashed(below.path()).startsWith(slashed(above.path()));
}

/// The excluded paths themselves and what lies close to them.
FileUrls candidatesFor(const FileUrls &excluded)
{
    FileUrls candidates;
    for (const FileUrl &url : excluded) {
        const QByteArray path = url.path();
        const QByteArray above = path.left(std::max<qsizetype>(path.lastIndexOf('/'), 1));
        for (const QByteArray &near : {path, above, path + 'x', path + "/x", path.chopped(1)}) {
            for (const FileUrlKind kind : {FileUrlKind::File, FileUrlKind::Folder}) {
                const FileUrl candidate = FileUrl::fromPath(near, kind);
                if (candidate.isValid())
                    candidates.append(candidate);
            }
        }
    }
    return candidates;
}

QByteArray findingInMatches(const ExcludedPaths &excluded)
{
    for (const FileUrl &candidate : candidatesFor(excluded.urls())) {
        const QByteArray path = candidate.path();
        const QByteArray text = candidate.isFolder() ? slashed(path) : path;
        if (excluded.matchByText(text) != matchOf(excluded.urls(), candidate, textIsIn))
            return "a text is met in another way: " + text;
        if (excluded.matchByPath(slashed(path)) != matchOf(excluded.urls(), candidate, isAround))
            return "a path is met in another way: " + path;
    }
    return {};
}

} // namespace

/// Each line is a stored exclusion. Those that are a path mean exactly that path, all others are
/// known as unreadable; and the sorted sets answer as the plain rule does, text by text.
QByteArray findingInExclusions(const QByteArray &input)
{
    const QStringList strings = QString::fromUtf8(input).split(u'\n').mid(0, kMostStrings);
    const ExcludedPaths excluded = ExcludedPaths::fromStoredStrings(strings);
    qsizetype read = 0;
    qsizetype unread = 0;
    for (const QString &string : strings) {
        const auto expected = decoded(string);
        if (!expected) {
            if (excluded.unparsable().value(unread++) != string)
                return "no path, but taken for one: " + string.toUtf8();
            continue;
        }
        const FileUrl url = excluded.urls().value(read++);
        if (url.path() != expected->path || url.isFolder() != expected->isFolder)
            return "another path: " + string.toUtf8();
        if (FileUrl::fromString(QString::fromLatin1(url.absoluteString())) != url)
            return "the URL does not lead back: " + url.absoluteString();
    }
    if (read != excluded.urls().size() || unread != excluded.unparsable().size())
        return "more exclusions than texts";
    return findingInMatches(excluded);
}
