#include "slices/exclusions/ExcludedPaths.h"

#include "platform/base/Log.h"
#include "platform/base/LogText.h"

#include <algorithm>

namespace {

/// The path as the rules compare it: with a slash at its end. "/" has it already.
QByteArray slashed(const QByteArray &path)
{
    return path.endsWith('/') ? path : path + '/';
}

QByteArray textOf(const FileUrl &url)
{
    return url.isFolder() ? slashed(url.path()) : url.path();
}

bool isBefore(const QByteArray &left, const QByteArray &right)
{
    return left < right;
}

} // namespace

PrefixSet::PrefixSet(std::vector<QByteArray> texts) : m_all(std::move(texts))
{
    std::sort(m_all.begin(), m_all.end(), isBefore);
    // In sorted order, all texts that one text begins follow it directly.
    for (const QByteArray &text : m_all) {
        if (m_shortest.empty() || !text.startsWith(m_shortest.back()))
            m_shortest.push_back(text);
    }
}

PrefixSet PrefixSet::with(const QByteArray &text) const
{
    std::vector<QByteArray> texts = m_all;
    texts.push_back(text);
    return PrefixSet(std::move(texts));
}

ExclusionMatch PrefixSet::match(const QByteArray &text) const
{
    // No member of m_shortest begins another, so only the last one not after the text can begin it.
    const auto above = std::upper_bound(m_shortest.begin(), m_shortest.end(), text, isBefore);
    if (above != m_shortest.begin() && text.startsWith(*std::prev(above)))
        return ExclusionMatch::Whole;
    const auto below = std::lower_bound(m_all.begin(), m_all.end(), text, isBefore);
    return below != m_all.end() && below->startsWith(text) ? ExclusionMatch::OnTheWay
                                                           : ExclusionMatch::None;
}

ExcludedPaths ExcludedPaths::fromStoredStrings(const QStringList &strings)
{
    ExcludedPaths result;
    std::vector<QByteArray> texts;
    std::vector<QByteArray> paths;
    for (const QString &string : strings) {
        const auto url = FileUrl::fromString(string);
        if (!url) {
            result.m_unparsable.append(string);
            continue;
        }
        result.m_urls.append(*url);
        texts.push_back(textOf(*url));
        paths.push_back(slashed(url->path()));
    }
    result.m_texts = PrefixSet(std::move(texts));
    result.m_paths = PrefixSet(std::move(paths));
    return result;
}

void ExcludedPaths::add(const FileUrl &url)
{
    m_urls.append(url);
    m_texts = m_texts.with(textOf(url));
    m_paths = m_paths.with(slashed(url.path()));
}

bool ExcludedPaths::containsExcludedFile(const FileUrls &urls) const
{
    if (urls.isEmpty() || m_urls.isEmpty())
        return false;
    for (const FileUrl &url : urls) {
        bool hasMatch = false;
        for (const FileUrl &excluded : m_urls) {
            if (url.path() != excluded.path())
                continue;
            qCInfo(logVantor, "%s, %s", logText(url.path()).constData(),
                   logText(excluded.path()).constData());
            hasMatch = true;
        }
        if (!hasMatch)
            return false;
    }
    return true;
}

bool ExcludedPaths::touches(const FileUrl &location) const
{
    const QByteArray path = location.path();
    return std::any_of(m_urls.begin(), m_urls.end(),
                       [&](const FileUrl &excluded) { return excluded.path().contains(path); });
}
