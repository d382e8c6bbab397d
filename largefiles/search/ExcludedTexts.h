#pragma once

#include "slices/exclusions/PrefixSet.h"

#include <QByteArrayList>
#include <QStringList>

/// What a search leaves out: URLs whose text contains one of these texts, word for word, anywhere.
/// However many they are, a question takes logarithmic time: "file:///" stands only at the
/// beginning of a URL, so a text that begins like this is contained only where it begins the URL.
/// Texts of another kind, which nobody but a user with an editor puts there, are looked for one by
/// one. Immutable; any thread.
class ExcludedTexts final
{
public:
    /// Empty texts exclude nothing.
    explicit ExcludedTexts(const QStringList &texts);

    bool isEmpty() const { return m_isEmpty; }
    /// How far the text of a URL is excluded: Whole when it contains one of the texts, OnTheWay
    /// when the text of something below it could.
    ExclusionMatch match(const QByteArray &text) const;

private:
    PrefixSet m_urls;
    QByteArrayList m_others;
    bool m_isEmpty = true;
};
