#pragma once

#include <QByteArray>
#include <QList>
#include <cstdint>

/// What a part of the soak says of itself.
struct PartWords
{
    const char *purpose = "";
    const char *amount = "";      ///< what --amount counts
    const char *usualAmount = ""; ///< what it is by default
    const char *naive = "";       ///< what --naive does; "" where there is no such mode
};

/// The command line of a part of the soak, and its output: result rows on stdout, separated by
/// tabs, everything else on stderr. Made once in main(), on the main thread.
class PartRun final
{
public:
    /// Ends the program for --help, and when the command line is not understood.
    PartRun(const QList<QByteArray> &arguments, const PartWords &words);

    std::uint64_t amount() const { return m_amount; }
    std::uint64_t seed() const { return m_seed; }
    bool isNaive() const { return m_isNaive; }

    /// A result. `wanted` is the amount that had to be reached.
    struct Row
    {
        QByteArray what;
        QByteArray where;
        std::uint64_t amount = 0;
        QByteArray unit;
        QByteArray found;
        std::uint64_t findings = 0;
        std::uint64_t wanted = 0;
    };
    void print(const Row &row);

    /// 0 if nothing was found and every amount was reached.
    int exitCode() const { return m_isWell ? 0 : 1; }

private:
    std::uint64_t m_amount = 0;
    std::uint64_t m_seed = 0;
    bool m_isNaive = false;
    bool m_isWell = true;
};

/// "12,345".
QByteArray grouped(std::uint64_t number);
