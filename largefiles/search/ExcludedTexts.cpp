#include "largefiles/search/ExcludedTexts.h"

#include <algorithm>

ExcludedTexts::ExcludedTexts(const QStringList &texts)
{
    for (const QString &text : texts) {
        const QByteArray bytes = text.toUtf8();
        if (bytes.isEmpty())
            continue;
        m_isEmpty = false;
        if (bytes.startsWith("file:///"))
            m_urls.add(bytes);
        else
            m_others.append(bytes);
    }
}

ExclusionMatch ExcludedTexts::match(const QByteArray &text) const
{
    const bool isFound = std::ranges::any_of(
        m_others, [&](const QByteArray &other) { return text.contains(other); });
    const ExclusionMatch byBeginning = isFound ? ExclusionMatch::Whole : m_urls.match(text);
    return m_others.isEmpty() ? byBeginning : std::max(byBeginning, ExclusionMatch::OnTheWay);
}
