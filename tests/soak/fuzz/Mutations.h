#pragma once

#include <QByteArrayList>
#include <random>

/// Makes inputs for a target without a fuzzer: the texts of a corpus, changed at random. The same
/// seed gives the same inputs. One thread.
class Mutations final
{
public:
    Mutations(QByteArrayList corpus, quint32 seed);

    QByteArray next();

private:
    int below(qsizetype limit);
    const QByteArray &anyOf();
    QByteArray pieceOf(const QByteArray &text);
    void change(QByteArray &text);

    QByteArrayList m_corpus;
    std::mt19937 m_random;
};
