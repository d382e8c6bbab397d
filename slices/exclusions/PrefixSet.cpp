#include "slices/exclusions/PrefixSet.h"

#include <QSharedData>
#include <set>

namespace {

/// In sorted order, all texts that one text begins follow it directly.
bool startsWithTheOneBefore(const std::set<QByteArray> &texts, const QByteArray &text)
{
    const auto above = texts.upper_bound(text);
    return above != texts.begin() && text.startsWith(*std::prev(above));
}

} // namespace

class PrefixSet::Texts final : public QSharedData
{
public:
    std::set<QByteArray> all;
    std::set<QByteArray> shortest; ///< without those that another member begins
};

PrefixSet::PrefixSet() : m_texts(new Texts)
{
}

PrefixSet::~PrefixSet() = default;
PrefixSet::PrefixSet(const PrefixSet &other) = default;
PrefixSet &PrefixSet::operator=(const PrefixSet &other) = default;

void PrefixSet::add(const QByteArray &text)
{
    Texts &texts = *m_texts;
    texts.all.insert(text);
    if (startsWithTheOneBefore(texts.shortest, text))
        return;
    auto longer = texts.shortest.lower_bound(text);
    while (longer != texts.shortest.end() && longer->startsWith(text))
        longer = texts.shortest.erase(longer);
    texts.shortest.insert(longer, text);
}

ExclusionMatch PrefixSet::match(const QByteArray &text) const
{
    // No member of `shortest` begins another, so only the last one not after the text can begin it.
    if (startsWithTheOneBefore(m_texts->shortest, text))
        return ExclusionMatch::Whole;
    const auto below = m_texts->all.lower_bound(text);
    return below != m_texts->all.end() && below->startsWith(text) ? ExclusionMatch::OnTheWay
                                                                  : ExclusionMatch::None;
}
