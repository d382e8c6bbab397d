#include "tests/soak/kit/SoakPart.h"

#include <QCoreApplication>
#include <QLocale>
#include <QLoggingCategory>
#include <QRandomGenerator>
#include <cstdio>
#include <cstdlib>

SoakPart::SoakPart(const Words &words, const QList<QCommandLineOption> &options)
{
    m_parser.setApplicationDescription(QString::fromLatin1(words.purpose));
    m_parser.addHelpOption();
    m_parser.addOptions({soakOption("amount", words.amount, "N", words.usualAmount),
                         soakOption("seed", "Repeats a run; random if it is not given.", "S")});
    m_parser.addOptions(options);
    m_parser.process(*QCoreApplication::instance());
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    bool isNumber = false;
    m_amount = value("amount").toULongLong(&isNumber);
    if (!isNumber || m_amount == 0)
        complain("amount");
    m_seed =
        isSet("seed") ? value("seed").toUInt(&isNumber) : QRandomGenerator::global()->generate();
    if (!isNumber)
        complain("seed");
    std::fprintf(stderr, "--seed %u\n", m_seed);
}

bool SoakPart::isSet(const char *option) const
{
    return m_parser.isSet(QString::fromLatin1(option));
}

QByteArray SoakPart::value(const char *option) const
{
    return m_parser.value(QString::fromLatin1(option)).toUtf8();
}

void SoakPart::complain(const char *option)
{
    constexpr int kUsageError = 2;
    std::fprintf(stderr, "--%s is not understood; --help tells more\n", option);
    std::exit(kUsageError);
}

void SoakPart::print(const Row &row)
{
    const bool isReached = row.done >= row.wanted;
    if (!isReached)
        std::fprintf(stderr, "only %s of %s were reached\n", grouped(row.done).constData(),
                     grouped(row.wanted).constData());
    m_isWell = m_isWell && isReached && row.findings == 0;
    std::printf("%s\t%s\t%s\t%s\n", row.what.constData(), row.where.constData(),
                row.amount.constData(), row.found.constData());
    std::fflush(stdout);
}

QCommandLineOption soakOption(const char *name, const char *description, const char *valueName,
                              const char *usual)
{
    return {QString::fromLatin1(name), QString::fromLatin1(description),
            QString::fromLatin1(valueName), QString::fromLatin1(usual)};
}

QByteArray grouped(std::uint64_t number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(qulonglong(number)).toUtf8();
}
