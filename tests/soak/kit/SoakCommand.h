#pragma once

#include "tests/soak/kit/SoakDisk.h"

#include <QCommandLineParser>

/// The command line that the parts of the soak have in common. A wrong one, or a question for help,
/// ends the process. The main thread's.
class SoakCommand final
{
public:
    /// `amount` says what is counted. Further options are the part's own.
    SoakCommand(const char *description, const char *amount,
                const QList<QCommandLineOption> &more = {});

    std::uint64_t amount() const { return m_amount; }
    /// The one that was given, or a random one. It is printed.
    quint32 seed() const { return m_seed; }
    SoakDisk::Kind disk() const { return m_disk; }
    ChildUser user() const { return m_user; }
    /// How many processes work side by side.
    int processes() const { return m_processes; }

    bool isSet(const char *option) const { return m_parser.isSet(QString::fromLatin1(option)); }
    QByteArray value(const char *option) const
    {
        return m_parser.value(QString::fromLatin1(option)).toUtf8();
    }

private:
    void read();
    [[noreturn]] static void complain(const char *about);

    QCommandLineParser m_parser;
    std::uint64_t m_amount = 0;
    quint32 m_seed = 0;
    SoakDisk::Kind m_disk = SoakDisk::Kind::Memory;
    ChildUser m_user = ChildUser::Same;
    int m_processes = 1;
};

/// "100,000".
QByteArray counted(std::uint64_t number);

/// Prints one row of the table.
void printRow(const QByteArray &what, const QByteArray &where, const QByteArray &amount,
              const QByteArray &found);
