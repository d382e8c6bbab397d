#include "slices/plan/LostExclusions.h"

#include <algorithm>

LostExclusions::LostExclusions(const std::vector<ResolvedExclusions::Lost> &lost)
{
    for (const ResolvedExclusions::Lost &one : lost) {
        const std::size_t number = m_byPath.size() + (m_firstHidden ? 1 : 0);
        if (!one.isHidden)
            m_byPath.push_back({number, one});
        else if (!m_firstHidden)
            m_firstHidden = {number, one};
    }
    std::ranges::sort(m_byPath, {}, [](const Numbered &one) { return one.lost.path; });
}

std::optional<ResolvedExclusions::Lost>
LostExclusions::firstPerhapsIn(const QByteArray &folder) const
{
    const QByteArray inside = folder + '/';
    std::optional<Numbered> first = m_firstHidden;
    auto one = std::ranges::lower_bound(m_byPath, inside, {},
                                        [](const Numbered &each) { return each.lost.path; });
    for (; one != m_byPath.end() && one->lost.path.startsWith(inside); ++one) {
        if (!first || one->number < first->number)
            first = *one;
    }
    return first ? std::optional(first->lost) : std::nullopt;
}
