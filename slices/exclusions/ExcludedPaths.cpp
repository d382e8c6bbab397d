#include "slices/exclusions/ExcludedPaths.h"

#include "platform/base/Log.h"
#include "platform/base/LogText.h"

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

} // namespace

ExcludedPaths ExcludedPaths::fromStoredStrings(const QStringList &strings)
{
    ExcludedPaths result;
    for (const QString &string : strings) {
        if (const auto url = FileUrl::fromString(string))
            result.add(*url);
        else
            result.m_unparsable.append(string);
    }
    return result;
}

void ExcludedPaths::add(const FileUrl &url)
{
    m_urls.append(url);
    m_texts.add(textOf(url));
    m_paths.add(slashed(url.path()));
    ++m_times[url.path()];
}

bool ExcludedPaths::containsExcludedFile(const FileUrls &urls) const
{
    if (urls.isEmpty() || m_urls.isEmpty())
        return false;
    for (const FileUrl &url : urls) {
        const int times = m_times.value(url.path());
        const QByteArray text = times > 0 ? logText(url.path()) : QByteArray();
        for (int i = 0; i < times; ++i)
            qCInfo(logVantor, "%s, %s", text.constData(), text.constData());
        if (times == 0)
            return false;
    }
    return true;
}
