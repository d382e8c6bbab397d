#pragma once

#include <QCommandLineParser>
#include <cstdint>

/// A part of the soak as scripts/soak knows it: what its main() is told and tells. Every part is a
/// program vantor-soak-PART, and keeps to this:
///
/// - Its command line has --amount, of which the part itself says what it counts; --seed, which
///   repeats a run; --help; and the options that the part adds: its own, those of SoakDisk where it
///   needs a disk, those of Workers where it has some. A number that is none, or another word than
///   those that it knows, ends it with 2; an option that it does not know, with 1.
/// - Stdout is for result rows and for nothing else: what was done, where, how much, what was
///   found, with tabs between. Progress and each finding, with what repeats it, go to stderr.
/// - It ends with 0 only if nothing was found and all that was wanted was done; otherwise with 1.
///
/// Made once in main(), after the application, on the main thread.
class SoakPart final
{
public:
    struct Words
    {
        const char *purpose = "";
        const char *amount = "";          ///< what --amount counts
        const char *usualAmount = "1000"; ///< what it is if it is not given
    };
    /// Ends the program for --help, and when the command line is not understood. Silences the log:
    /// a million cleanings log much.
    explicit SoakPart(const Words &words, const QList<QCommandLineOption> &options = {});

    /// At least 1.
    std::uint64_t amount() const { return m_amount; }
    /// The one that was given, or a random one. It is printed.
    quint32 seed() const { return m_seed; }
    bool isSet(const char *option) const;
    QByteArray value(const char *option) const;
    /// Ends the program, because the value of this option is not understood.
    [[noreturn]] static void complain(const char *option);

    /// A result. Not well with findings, or where less was done than wanted.
    struct Row
    {
        QByteArray what;
        QByteArray where;
        QByteArray amount;
        QByteArray found;
        std::uint64_t findings = 0;
        std::uint64_t done = 0;
        std::uint64_t wanted = 0;
    };
    void print(const Row &row);

    /// Of the rows until now.
    int exitCode() const { return m_isWell ? 0 : 1; }

private:
    QCommandLineParser m_parser;
    std::uint64_t m_amount = 0;
    quint32 m_seed = 0;
    bool m_isWell = true;
};

/// An option of a part. Without the name of a value it takes none.
QCommandLineOption soakOption(const char *name, const char *description, const char *valueName = "",
                              const char *usual = "");

/// "12,345".
QByteArray grouped(std::uint64_t number);
