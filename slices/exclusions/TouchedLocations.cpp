#include "slices/exclusions/TouchedLocations.h"

#include <algorithm>

TouchedLocations::TouchedLocations(const FileUrls &excluded)
{
    for (const FileUrl &url : excluded)
        m_paths.append(url.path());
    for (const QByteArray &path : std::as_const(m_paths)) {
        const QByteArrayView text(path);
        for (qsizetype slash = text.indexOf('/'); slash >= 0; slash = text.indexOf('/', slash + 1))
            m_tails.push_back(text.sliced(slash));
    }
    std::sort(m_tails.begin(), m_tails.end());
}

bool TouchedLocations::isTouched(const FileUrl &location) const
{
    const QByteArray path = location.path();
    const auto tail = std::lower_bound(m_tails.begin(), m_tails.end(), QByteArrayView(path));
    return tail != m_tails.end() && tail->startsWith(path);
}
