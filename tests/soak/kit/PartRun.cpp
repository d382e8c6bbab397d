#include "tests/soak/kit/PartRun.h"

#include <QCommandLineParser>
#include <QLocale>
#include <QRandomGenerator>
#include <cstdio>
#include <cstdlib>

namespace {

std::uint64_t numberOf(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    bool isNumber = false;
    const std::uint64_t number = parser.value(option).toULongLong(&isNumber);
    if (!isNumber) {
        std::fprintf(stderr, "--%s needs a number\n", qPrintable(option.names().constFirst()));
        std::exit(2);
    }
    return number;
}

} // namespace

PartRun::PartRun(const QList<QByteArray> &arguments, const PartWords &words)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8(words.purpose));
    parser.addHelpOption();
    const QCommandLineOption amount(QStringLiteral("amount"), QString::fromUtf8(words.amount),
                                    QStringLiteral("N"), QString::fromUtf8(words.usualAmount));
    const QCommandLineOption seed(QStringLiteral("seed"),
                                  QStringLiteral("what repeats a run; random by default"),
                                  QStringLiteral("S"));
    const QCommandLineOption naive(QStringLiteral("naive"), QString::fromUtf8(words.naive));
    parser.addOptions({amount, seed});
    if (*words.naive != '\0')
        parser.addOption(naive);
    QStringList texts;
    for (const QByteArray &argument : arguments)
        texts.append(QString::fromLocal8Bit(argument));
    parser.process(texts);
    m_amount = numberOf(parser, amount);
    m_seed = parser.isSet(seed) ? numberOf(parser, seed) : QRandomGenerator::system()->generate();
    m_isNaive = *words.naive != '\0' && parser.isSet(naive);
    std::fprintf(stderr, "seed %llu\n", static_cast<unsigned long long>(m_seed));
}

void PartRun::print(const Row &row)
{
    const bool isReached = row.amount >= row.wanted;
    if (!isReached)
        std::fprintf(stderr, "only %s of %s were reached\n", grouped(row.amount).constData(),
                     grouped(row.wanted).constData());
    m_isWell = m_isWell && isReached && row.findings == 0;
    std::printf("%s\t%s\t%s %s\t%s\n", row.what.constData(), row.where.constData(),
                grouped(row.amount).constData(), row.unit.constData(), row.found.constData());
    std::fflush(stdout);
}

QByteArray grouped(std::uint64_t number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(qulonglong(number)).toUtf8();
}
