#include "tests/soak/fuzz/Mutations.h"

#include <utility>

namespace {

constexpr int kMostChanges = 4;
constexpr qsizetype kLongestPiece = 24;

/// Bytes that mean something to one of the formats.
const QByteArray &strangeBytes()
{
    static const QByteArray bytes("\0\n\r\t \\\"'%$#=/.[]{};,\xff\xfe\x80", 24);
    return bytes;
}

} // namespace

Mutations::Mutations(QByteArrayList corpus, quint32 seed)
    : m_corpus(std::move(corpus)), m_random(seed)
{
    m_corpus.append(QByteArray());
}

int Mutations::below(qsizetype limit)
{
    return static_cast<int>(m_random() % static_cast<quint32>(std::max<qsizetype>(limit, 1)));
}

const QByteArray &Mutations::anyOf()
{
    return std::as_const(m_corpus)[below(m_corpus.size())];
}

QByteArray Mutations::pieceOf(const QByteArray &text)
{
    return text.mid(below(text.size()), 1 + below(kLongestPiece));
}

void Mutations::change(QByteArray &text)
{
    const int at = below(text.size() + 1);
    switch (below(6)) {
    case 0:
        text.insert(at, static_cast<char>(m_random()));
        break;
    case 1:
        text.insert(at, strangeBytes()[below(strangeBytes().size())]);
        break;
    case 2:
        text.remove(at, 1 + below(kLongestPiece));
        break;
    case 3:
        text.insert(at, pieceOf(anyOf()));
        break;
    case 4:
        text.replace(at, 1, QByteArray(1, strangeBytes()[below(strangeBytes().size())]));
        break;
    default:
        text.insert(at, pieceOf(text));
    }
}

QByteArray Mutations::next()
{
    QByteArray text = anyOf();
    for (int changes = 1 + below(kMostChanges); changes > 0; --changes)
        change(text);
    return text;
}
