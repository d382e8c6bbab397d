#include "tests/soak/kit/SoakCommand.h"

#include <QCoreApplication>
#include <QLocale>
#include <QLoggingCategory>
#include <QRandomGenerator>
#include <cstdio>
#include <thread>

namespace {

constexpr int kUsageError = 2;

QCommandLineOption option(const char *name, const char *description, const char *value,
                          const char *standard = "")
{
    return {QString::fromLatin1(name), QString::fromLatin1(description), QString::fromLatin1(value),
            QString::fromLatin1(standard)};
}

} // namespace

SoakCommand::SoakCommand(const char *description, const char *amount,
                         const QList<QCommandLineOption> &more)
{
    m_parser.setApplicationDescription(QString::fromLatin1(description));
    m_parser.addHelpOption();
    m_parser.addOptions(
        {option("amount", amount, "N", "1000"),
         option("seed", "Repeats a run; random if it is not given.", "S"),
         option("on", "The disk, made for this run: tmpfs, ext4 or btrfs.", "DISK", "tmpfs"),
         option("as", "Who does it: administrator or user.", "WHO", "user"),
         option("processes", "As many processes work side by side.", "P")});
    m_parser.addOptions(more);
    m_parser.process(*QCoreApplication::instance());
    QLoggingCategory::setFilterRules(QStringLiteral("*=false")); // a million cleanings log much
    read();
}

void SoakCommand::read()
{
    bool isNumber = false;
    m_amount = value("amount").toULongLong(&isNumber);
    if (!isNumber || m_amount == 0)
        complain("--amount");
    m_seed =
        isSet("seed") ? value("seed").toUInt(&isNumber) : QRandomGenerator::global()->generate();
    if (!isNumber)
        complain("--seed");
    std::fprintf(stderr, "--seed %u\n", m_seed);
    const QByteArrayList disks{"tmpfs", "ext4", "btrfs"};
    if (!disks.contains(value("on")))
        complain("--on");
    m_disk = static_cast<SoakDisk::Kind>(disks.indexOf(value("on")));
    const QByteArrayList users{"administrator", "user"};
    if (!users.contains(value("as")))
        complain("--as");
    m_user = value("as") == "user" ? ChildUser::Nobody : ChildUser::Same;
    m_processes = isSet("processes") ? value("processes").toInt(&isNumber)
                                     : int(std::thread::hardware_concurrency());
    if (!isNumber || m_processes < 1)
        complain("--processes");
}

void SoakCommand::complain(const char *about)
{
    std::fprintf(stderr, "%s is not understood; --help tells more\n", about);
    std::exit(kUsageError);
}

QByteArray counted(std::uint64_t number)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(qulonglong(number)).toUtf8();
}

void printRow(const QByteArray &what, const QByteArray &where, const QByteArray &amount,
              const QByteArray &found)
{
    std::printf("%s\t%s\t%s\t%s\n", what.constData(), where.constData(), amount.constData(),
                found.constData());
    std::fflush(stdout);
}
