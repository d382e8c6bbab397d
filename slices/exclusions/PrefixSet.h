#pragma once

#include <QByteArray>
#include <QSharedDataPointer>

/// How much of a file or folder an exclusion keeps.
enum class ExclusionMatch {
    None,
    OnTheWay, ///< it stays, but what else it holds may go
    Whole,    ///< it stays with all that it holds
};

/// A sorted set of byte strings. Takes one more, and answers whether a member begins a text or a
/// text begins a member, in logarithmic time. A value, implicitly shared; any thread.
class PrefixSet final
{
public:
    PrefixSet();
    ~PrefixSet();
    PrefixSet(const PrefixSet &other);
    PrefixSet &operator=(const PrefixSet &other);

    void add(const QByteArray &text);

    /// Whole when a member begins the text (or equals it), OnTheWay when the text begins a member.
    ExclusionMatch match(const QByteArray &text) const;

private:
    class Texts;

    QSharedDataPointer<Texts> m_texts;
};
